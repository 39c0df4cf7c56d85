#version 330

// The colours of height330.frag, computed at the vertices.

layout(location = 0) in vec4 Position;
layout(location = 1) in float selection;

uniform mat4 Modelview;
uniform mat4 Projection;
uniform int Size;
uniform float ColorOffset;
uniform float MinZ;
uniform float MaxZ;

// Few outputs of four numbers each: a driver without graphics hardware works on each of them for
// every facet.
out vec4 vColor; // and the selection
out vec3 vPlace; // in the floor pattern, and the height

const float Pi = 3.1415926535897932384626433832795;

void main()
{
    vec3 color = vec3(0.0);
    if (MaxZ != MinZ) {
        float val = (Position.z - MinZ) / (MaxZ - MinZ) * 255.0 + ColorOffset;
        color.g = 0.5 + 0.5 * sin(2.0 * Pi / 255.0 * val + Pi / 2.0);
        color.b = 0.5 + 0.5 * sin(2.0 * Pi / 255.0 * val + Pi);
    }

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
