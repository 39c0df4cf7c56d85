#version 120

attribute float selection;

uniform mat4 Modelview;
uniform mat4 Projection;
uniform mat3 NormalMatrix;
uniform int Size;

varying vec3 vNormal;
varying vec2 vTexCoord;
varying float vZPos;
varying float selected;

void main()
{
    gl_Position = Projection * Modelview * gl_Vertex;
    // Lighting is computed in model space, so the normal stays as it is.
    vNormal = gl_Normal;
    vTexCoord = gl_Vertex.xy / float(Size) + vec2(0.5);
    vZPos = gl_Vertex.z;
    selected = selection;
}
