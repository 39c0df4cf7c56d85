#version 330

in vec4 vColor; // and the selection
in vec3 vPlace; // in the floor pattern, and the height

uniform sampler2D TexUnit0;

out vec4 FragColor;

void main()
{
    if (vPlace.z <= 0.0 && vColor.a == 0.0)
        FragColor = vec4(texture(TexUnit0, vPlace.xy).rgb, 0.5);
    else
        FragColor = vec4(vColor.rgb, 1.0);
}
