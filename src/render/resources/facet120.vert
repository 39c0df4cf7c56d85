#version 120

uniform mat4 Modelview;
uniform mat4 Projection;
uniform mat4 Placement;

varying vec3 vPlace;

void main()
{
    vec4 place = Placement * gl_Vertex;
    vPlace = place.xyz;
    gl_Position = Projection * (Modelview * place);
}
