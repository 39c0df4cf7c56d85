#version 330

in vec3 vColor;
in vec2 vTexCoord;
in float vZPos;
in float selected;

uniform sampler2D TexUnit0;

out vec4 FragColor;

void main()
{
    if (vZPos <= 0.0 && selected == 0.0)
        FragColor = vec4(texture(TexUnit0, vTexCoord).rgb, 0.5);
    else
        FragColor = vec4(vColor, 1.0);
}
