#version 330

layout(location = 0) in vec4 Position;
// Without a location: the linker gives it the next free one, 1, where the selection is bound.
in float selection;

uniform mat4 Modelview;
uniform mat4 Projection;
uniform int Size;

varying vec2 vTexCoord;
varying float vZPos;
varying float selected;

void main()
{
    gl_Position = Projection * Modelview * Position;
    vTexCoord = Position.xy / float(Size) + vec2(0.5);
    vZPos = Position.z;
    selected = selection;
}
