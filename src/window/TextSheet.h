#pragma once

#include <QDialog>

namespace window {

/// A text to be read and copied: the commands of a conversion, or what became of every track. It is deleted
/// when it closes.
class TextSheet final : public QDialog
{
    Q_OBJECT

public:
    enum class Letters { Plain, Commands };

    TextSheet(const QString &title, const QString &introduction, const QString &text, Letters letters,
              QWidget *parent);
};

} // namespace window
