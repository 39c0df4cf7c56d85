#version 330

// The colours of lit330.frag, computed at the vertices.

layout(location = 0) in vec4 Position;
layout(location = 1) in vec4 Normal;
layout(location = 2) in float selection;

uniform mat4 Modelview;
uniform mat4 Projection;
uniform int Size;
uniform vec3 LightPosition;
uniform vec4 DiffuseMaterial;
uniform vec4 AmbientMaterial;
uniform vec4 SpecularMaterial;
uniform float Shinyness;

// Few outputs of four numbers each: a driver without graphics hardware works on each of them for
// every facet.
out vec4 vColor; // and the selection
out vec3 vPlace; // in the floor pattern, and the height

void main()
{
    vec3 N = normalize(Normal.xyz);
    vec3 H = normalize(LightPosition + vec3(0.0, 0.0, 1.0));
    float df = abs(dot(N, LightPosition)) * DiffuseMaterial.w;
    float sf = pow(abs(dot(N, H)), Shinyness) * SpecularMaterial.w;
    vec3 color = AmbientMaterial.rgb * AmbientMaterial.w + df * DiffuseMaterial.rgb
                 + sf * SpecularMaterial.rgb;

    if (selection > 0.0) {
        float mag = length(color);
        color = normalize(vec3(1.0, 0.0, 0.0) + color) * mag;
    } else if (selection < 0.0) {
        float grey = dot(color, vec3(0.3, 0.59, 0.11));
        color = mix(color, vec3(0.45, 0.25, 0.7) * (0.35 + 0.9 * grey), 0.75 * min(-selection, 1.0));
    }
    vColor = vec4(color, selection);
    gl_Position = Projection * Modelview * Position;
    vPlace = vec3(Position.xy / float(Size) + vec2(0.5), Position.z);
}
