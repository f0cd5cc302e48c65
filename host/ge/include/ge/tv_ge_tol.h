#pragma once

/// How far two things may be apart and still count as equal.
class TvGeTol
{
public:
    TvGeTol() = default;
    TvGeTol(double point, double vector) : m_point(point), m_vector(vector) {}

    /// Distance of two points, in drawing units.
    double equalPoint() const { return m_point; }
    /// Difference of two unit vectors, and the largest length of a vector that counts as none.
    double equalVector() const { return m_vector; }

private:
    double m_point = 1e-10;
    double m_vector = 1e-10;
};
