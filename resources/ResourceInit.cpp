#include "ResourceInit.h"
#include <QtCore/QDir>

void vantrelInitResources()
{
    Q_INIT_RESOURCE(vantrel);
}
