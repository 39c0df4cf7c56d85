#version 120

varying vec2 vTexCoord;
varying float vZPos;
varying float selected;

uniform float ColorOffset;
uniform float MinZ;
uniform float MaxZ;
uniform sampler2D TexUnit0;

const float Pi = 3.1415926535897932384626433832795;

void main()
{
    vec3 color = vec3(0.0);
    if (MaxZ != MinZ) {
        float val = (vZPos - MinZ) / (MaxZ - MinZ) * 255.0 + ColorOffset;
        color.g = 0.5 + 0.5 * sin(2.0 * Pi / 255.0 * val + Pi / 2.0);
        color.b = 0.5 + 0.5 * sin(2.0 * Pi / 255.0 * val + Pi);
    }

    if (selected > 0.0) {
        float mag = length(color);
        color = normalize(vec3(1.0, 0.0, 0.0) + color) * mag;
    } else if (selected < 0.0) {
        // The mask: violet, the more the stronger it is.
        float grey = dot(color, vec3(0.3, 0.59, 0.11));
        color = mix(color, vec3(0.45, 0.25, 0.7) * (0.35 + 0.9 * grey), 0.75 * min(-selected, 1.0));
    }
    if (vZPos <= 0.0 && selected == 0.0)
        gl_FragColor = vec4(texture2D(TexUnit0, vTexCoord).rgb, 0.5);
    else
        gl_FragColor = vec4(color, 1.0);
}
