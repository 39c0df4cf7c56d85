#version 120

varying vec3 vNormal;
varying vec2 vTexCoord;
varying float vZPos;
varying float selected;

uniform vec3 LightPosition;
uniform vec4 DiffuseMaterial;
uniform vec4 AmbientMaterial;
uniform vec4 SpecularMaterial;
uniform float Shinyness;
uniform sampler2D TexUnit0;

float amplify(float d, float scale, float offset)
{
    float c = clamp(scale * d + offset, 0.0, 1.0);
    return 1.0 - exp2(-2.0 * c * c);
}

void main()
{
    vec3 N = normalize(vNormal);
    vec3 L = LightPosition;
    vec3 E = vec3(0.0, 0.0, 1.0);
    vec3 H = normalize(L + E);

    // Both sides of a face are lit alike.
    float df = abs(dot(N, L)) * DiffuseMaterial.w;
    float sf = pow(abs(dot(N, H)), Shinyness) * SpecularMaterial.w;
    vec3 color = AmbientMaterial.rgb * AmbientMaterial.w + df * DiffuseMaterial.rgb
                 + sf * SpecularMaterial.rgb;

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
