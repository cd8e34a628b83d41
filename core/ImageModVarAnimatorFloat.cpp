#include "core/ImageModVarAnimatorFloat.h"

#include "core/ImageModVariable.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"

ImageModVarAnimatorFloat::ImageModVarAnimatorFloat(ImageModVariable* target, std::vector<float> keyValues, int32_t period)
    : keys(std::move(keyValues)), variable(target), periodFrames(period)
{
}

void ImageModVarAnimatorFloat::apply(int32_t frame)
{
    if (!variable || keys.empty())
        return;
    const float v = keyValueAt(keys, periodFrames, frame);
    if (!variable->data)
        variable->data = std::make_unique<ImageModVariableData>();
    if (ImageModVariableData* f = variable->asFloat())
        f->value = v;
    else if (ImageModVariableDataCurve* c = variable->asCurve())
        c->curve.hueOffset = v;
    else if (ImageModVariableDataChoice* ch = variable->asChoice())
        ch->index = int32_t(v);
}
