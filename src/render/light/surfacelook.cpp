#include "render/light/surfacelook.h"

#include "render/engines/shader.h"
#include "render/light/lightdirection.h"

namespace marlowen {

void SurfaceLook::applyTo(Shader &shader) const
{
    shader.ambient = rgbaOf(material.ambient);
    shader.diffuse = rgbaOf(material.diffuse);
    shader.specular = rgbaOf(material.specular);
    shader.shininess = static_cast<float>(material.shinyness);
    shader.lightPosition = lightDirection(lightPos);
}

} // namespace marlowen
