#include "logbook/frmNote.h"

#include "logbook/LogBook.h"
#include "widgets/TimeBox.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmNote::frmNote(LogBook& log, SubjectSource subject, const QString& now, QWidget* parent)
    : QWidget(parent, Qt::Window), m_log(log), m_subject(std::move(subject)), m_lblAlarm(new QLabel),
      m_txtNote(new QLineEdit), m_edtTime(new TimeBox),
      m_cmdOK(new QPushButton(QStringLiteral("Record in Logbook"))),
      m_cmdCancel(new QPushButton(QStringLiteral("Cancel")))
{
    setObjectName(QStringLiteral("frmNote"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Write a note to the Logbook (Max. 60 characters)"));
    m_lblAlarm->setObjectName(QStringLiteral("lblAlarm"));
    m_txtNote->setObjectName(QStringLiteral("txtNote"));
    m_txtNote->setAccessibleName(QStringLiteral("Note"));
    m_txtNote->setMaxLength(60);
    m_txtNote->setMinimumWidth(360);
    m_edtTime->setObjectName(QStringLiteral("edtTime"));
    m_edtTime->setAccessibleName(QStringLiteral("Time for Note"));
    m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
    m_cmdOK->setDefault(true);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* label1 = new QLabel(QStringLiteral("Time for Note"));
    label1->setObjectName(QStringLiteral("Label1"));

    auto* time = new QHBoxLayout;
    time->addWidget(label1);
    time->addWidget(m_edtTime);
    time->addStretch(1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_lblAlarm);
    layout->addWidget(m_txtNote);
    layout->addLayout(time);
    layout->addLayout(buttons);

    connect(m_cmdOK, &QPushButton::clicked, this, &frmNote::cmdOK_Click);
    connect(m_txtNote, &QLineEdit::returnPressed, this, &frmNote::cmdOK_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &frmNote::cmdCancel_Click);

    m_edtTime->SetText(now);
    // With no alarm selected the label stays empty.
    if (const auto alarm = m_subject())
        m_lblAlarm->setText(alarm->Message);
}

void frmNote::cmdOK_Click()
{
    // No alarm selected any more: nothing to record the note against.
    if (const auto alarm = m_subject())
        m_log.WriteLogEntry(QStringLiteral("NT"), alarm->Safety, alarm->Message + QStringLiteral(": "),
                            m_txtNote->text(), QStringLiteral(" (") + m_edtTime->Text() + u')');
    close();
}

void frmNote::cmdCancel_Click()
{
    close();
}
