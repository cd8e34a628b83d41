// ToneCurve::setFromString: any text gives a curve with a full, finite-sized table.
#include "core/ToneCurve.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ToneCurve curve;
    curve.setFromString(std::string(reinterpret_cast<const char*>(data), size));
    if (curve.entries.size() != size_t(ToneCurve::tableSize))
        __builtin_trap();
    volatile float sink = curve.lookup(0.5f) + curve.lookup(0.0f) + curve.lookup(1.0f);
    (void)sink;
    (void)curve.isIdentity();
    const std::string text = curve.toString();
    ToneCurve again(text);
    if (again.entries.size() != size_t(ToneCurve::tableSize))
        __builtin_trap();
    if (curve.pointCount() > 0)
        curve.setPoint(0, 0.25f, 0.75f);
    if (curve.pointCount() > 2)
        curve.removePoint(1);
    return 0;
}
