#pragma once

#include <QList>
#include <QString>

namespace prefs {

/// The text of one control's tool tip, by the name of its property.
struct ToolTipText
{
    const char *property;
    QString text;
};

/// All of them, in the order of the properties. Built once per program.
const QList<ToolTipText> &toolTipTexts();

} // namespace prefs
