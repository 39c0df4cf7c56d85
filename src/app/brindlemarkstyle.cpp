#include "app/brindlemarkstyle.h"

BrindlemarkStyle::BrindlemarkStyle(int mode)
    : QProxyStyle(QStringLiteral("fusion"))
{
    Q_UNUSED(mode);
}
