#pragma once

// Fractions of the picture cut away on each side, 0..1.
struct CropFractions {
    float left = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
    float bottom = 0.0f;

    bool isNone() const { return left == 0.0f && right == 0.0f && top == 0.0f && bottom == 0.0f; }
};
