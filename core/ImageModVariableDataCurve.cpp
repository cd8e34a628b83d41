#include "core/ImageModVariableDataCurve.h"

ImageModVariableDataCurve::ImageModVariableDataCurve(const std::string& points, bool closed)
{
    curve.closed = closed;
    curve.setFromString(points);
}

std::unique_ptr<ImageModVariableData> ImageModVariableDataCurve::clone() const
{
    return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataCurve(*this));
}

bool ImageModVariableDataCurve::isEqual(const ImageModVariableData& other) const
{
    if (other.kind() != kVariableCurve)
        return false;
    const auto& o = static_cast<const ImageModVariableDataCurve&>(other);
    if (o.curve.hueOffset != curve.hueOffset || o.curve.points.size() != curve.points.size())
        return false;
    for (size_t i = 0; i < curve.points.size(); ++i) {
        if (o.curve.points[i].x != curve.points[i].x || o.curve.points[i].y != curve.points[i].y)
            return false;
    }
    return true;
}
