#include "prefs/KXToolTips.h"

#include "prefs/ToolTipTexts.h"

using namespace Qt::StringLiterals;

KXToolTips::KXToolTips(const tools::ToolPlaces *places)
    : KXHelpers(places)
{
}

void KXToolTips::modifyToolTips(Tips tips)
{
    for (const prefs::ToolTipText &tip : prefs::toolTipTexts())
        setProperty(tip.property, tips == Tips::Shown ? tip.text : u""_s);
}
