#include "window/TextSheet.h"

#include "window/Controls.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

TextSheet::TextSheet(const QString &title, const QString &introduction, const QString &text, Letters letters,
                     QWidget *parent)
    : QDialog(parent)
{
    setObjectName(u"TextSheet"_s);
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *field = named(new QPlainTextEdit(text), "SheetText", title);
    field->setReadOnly(true);
    field->setTabChangesFocus(true);
    field->setFont(fontOf(letters == Letters::Commands ? Type::Mono : Type::Body));
    auto *copy = named(new QPushButton(tr("Copy")), "CopyButton", tr("Copy the text"));
    auto *close = named(primaryButton(tr("Close")), "CloseButton", tr("Close"));
    copy->setAutoDefault(false);
    close->setDefault(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(space::large, space::large, space::large, space::large);
    layout->setSpacing(space::small);
    layout->addWidget(hint(introduction));
    layout->addWidget(field, 1);
    layout->addWidget(rowOf({nullptr, copy, close}));
    connect(copy, &QPushButton::clicked, this, [text] { QGuiApplication::clipboard()->setText(text); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    resize(620, 360);
}

} // namespace window
