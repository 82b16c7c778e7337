#include "playlist/window/CddbServerDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

#include "settings/CRynSettings.h"

CddbServerDialog::CddbServerDialog(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("CD Names Server"));
    CRynSettings& s = Settings();
    host_ = new QLineEdit(s.GetCddbServer(), this);
    port_ = new QSpinBox(this);
    port_->setRange(1, 65535);
    port_->setValue(s.GetCddbServerPort());
    address_ = new QLineEdit(s.GetCddbUserAddress(), this);
    timeout_ = new QSpinBox(this);
    timeout_->setRange(1, 120);
    timeout_->setSuffix(QStringLiteral(" s"));
    timeout_->setValue(s.GetCddbTimeoutSeconds());
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("CDDB server (over HTTP):"), host_);
    form->addRow(QStringLiteral("Port:"), port_);
    form->addRow(QStringLiteral("Your e-mail address:"), address_);
    form->addRow(QStringLiteral("Give up after:"), timeout_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        Store();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void CddbServerDialog::Store() {
    CRynSettings& s = Settings();
    const QString host = host_->text().trimmed();
    if (!host.isEmpty())
        s.SetCddbServer(host);
    s.SetCddbServerPort(port_->value());
    const QString address = address_->text().trimmed();
    if (!address.isEmpty())
        s.SetCddbUserAddress(address);
    s.SetCddbTimeoutSeconds(timeout_->value());
}
