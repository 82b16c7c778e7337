#include "help/CAboutDlg.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("CAboutDlg"));
    setWindowTitle(QStringLiteral("About Mixora"));
    auto* row = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setPixmap(QApplication::windowIcon().pixmap(32, 32));
    icon->setAlignment(Qt::AlignTop);
    row->addWidget(icon);
    auto* text = new QLabel(
        QStringLiteral("<b>Mixora Version %1</b><br>A two-deck mixing program for the disc "
                       "jockey.<br>Copyright (C) Orvane")
            .arg(QStringLiteral(MIXORA_VERSION)),
        this);
    text->setObjectName(QStringLiteral("about"));
    row->addWidget(text, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(buttons);
}
