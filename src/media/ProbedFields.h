#pragma once

#include <QString>

namespace media {

/// Whether the value of a stream's own field has a form that it can have: an index or a width is a number, a
/// codec's name a short word. Tools are given these, and decisions rest on them, while a film can be made
/// to tell anything. Fields that nothing rests on fit always.
bool fitsItsField(const QString &key, const QString &value);

/// Whether that is such a field, which an object never fits.
bool isTypedField(const QString &key);

} // namespace media
