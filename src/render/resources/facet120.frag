#version 120

varying vec3 vPlace;

uniform vec3 LightPosition;
uniform vec4 DiffuseMaterial;
uniform vec4 AmbientMaterial;
uniform vec4 SpecularMaterial;
uniform vec4 BackMaterial;
uniform float Shinyness;

void main()
{
    // The facet's own plane: its edges show, and no normals need to be stored.
    vec3 across = cross(dFdx(vPlace), dFdy(vPlace));
    float area = length(across);
    vec3 N = area > 0.0 ? across / area : vec3(0.0, 0.0, 1.0);
    vec3 L = LightPosition;
    vec3 H = normalize(L + vec3(0.0, 0.0, 1.0));

    float df = abs(dot(N, L));
    float sf = pow(abs(dot(N, H)), Shinyness) * SpecularMaterial.w;
    vec3 front = AmbientMaterial.rgb * AmbientMaterial.w + df * DiffuseMaterial.w * DiffuseMaterial.rgb
                 + sf * SpecularMaterial.rgb;
    vec3 back = BackMaterial.rgb * (0.35 + 0.55 * df);
    gl_FragColor = vec4(gl_FrontFacing ? front : back, 1.0);
}
