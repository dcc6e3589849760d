#include "props/frmClockProps.h"

#include "clock/ZoneClock.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

frmClockProps::frmClockProps(QWidget* parent) : QDialog(parent), m_cboTimeZone(new QComboBox)
{
    setObjectName(QStringLiteral("frmClockProps"));
    setWindowTitle(QStringLiteral("Clock Properties"));
    m_cboTimeZone->setObjectName(QStringLiteral("cboTimeZone"));
    m_cboTimeZone->setAccessibleName(QStringLiteral("Local Time Zone"));

    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    QPushButton* cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("Local Time Zone"), m_cboTimeZone);
    form->addRow(buttons);

    FillOwnZoneList(1);
}

void frmClockProps::FillOwnZoneList(int zone)
{
    m_cboTimeZone->clear();
    for (int i = 0; i < ZoneCount; ++i)
        m_cboTimeZone->addItem(DialogZoneLabel(i), Zones.at(std::size_t(i)).Offset);
    m_cboTimeZone->setCurrentIndex(zone >= 0 && zone < ZoneCount ? zone : -1);
}
