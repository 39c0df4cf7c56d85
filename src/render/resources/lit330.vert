#version 330

layout(location = 0) in vec4 Position;
layout(location = 1) in vec4 Normal;
// Without a location: the linker gives it the next free one, 2, where the selection is bound.
in float selection;

uniform mat4 Modelview;
uniform mat4 Projection;
uniform mat3 NormalMatrix;
uniform int Size;

out vec3 vNormal;
out vec2 vTexCoord;
out float vZPos;
out float selected;

void main()
{
    gl_Position = Projection * Modelview * Position;
    // Lighting is computed in model space, so the normal stays as it is.
    vNormal = Normal.xyz;
    vTexCoord = Position.xy / float(Size) + vec2(0.5);
    vZPos = Position.z;
    selected = selection;
}
