#pragma once

#include "render/light/materials.h"

namespace marlowen {

class Shader;

/// How a lit surface looks in every view that shows one.
struct SurfaceLook
{
    Material material = materialNamed(presetMaterials(), defaultMaterialName);
    int lightPos = 0; ///< index into lightPositions(); any other counts as the first

    /// Hands colours, shininess and light to the shader.
    void applyTo(Shader &shader) const;
};

} // namespace marlowen
