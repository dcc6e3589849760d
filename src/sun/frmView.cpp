#include "sun/frmView.h"

#include "sun/BuildSunTable.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/PrintDialog.h"
#include "widgets/RtfReader.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>

#include <exception>

frmView::frmView(const SunTablePlace& place, QWidget* parent)
    : QDialog(parent), m_place(place),
      m_rtfTable(Named(new QTextEdit, QStringLiteral("rtfTable"), QStringLiteral("Sunrise/Sunset Table")))
{
    setObjectName(QStringLiteral("frmView"));
    setWindowTitle(QStringLiteral("Sunrise/Sunset Table"));
    m_rtfTable->setReadOnly(true);
    m_rtfTable->setLineWrapMode(QTextEdit::NoWrap);
    QFont font = m_rtfTable->font();
    font.setFamily(QStringLiteral("Arial"));
    m_rtfTable->setFont(font);
    m_rtfTable->document()->setDefaultFont(font);
    if (LoadRtfFile(SunTableFile, *m_rtfTable->document(), &m_loadError, DisplayFactor))
        LineUpColumns();
    else
        m_rtfTable->setPlainText(m_loadError);

    auto* print =
        Named(new QPushButton(QStringLiteral("Print")), QStringLiteral("cmdPrint"), QStringLiteral("Print"));
    auto* close =
        Named(new QPushButton(QStringLiteral("Close")), QStringLiteral("cmdClose"), QStringLiteral("Close"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(print);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_rtfTable, 1);
    layout->addLayout(buttons);
    resize(640, 600);

    connect(print, &QPushButton::clicked, this, &frmView::cmdPrint_Click);
    connect(close, &QPushButton::clicked, this, &frmView::cmdClose_Click);
}

void frmView::LineUpColumns()
{
    // The document asks for a tab every 5000 twips (3.5 inches), which would spread a row
    // over two screen widths. The viewer puts a tab stop every column of the underlined
    // heading instead ("Date     Rise     Set ..."), so the rows stand under their words.
    QTextDocument* document = m_rtfTable->document();
    const QTextBlock heading = document->findBlockByNumber(4);
    const QFont headingFont = heading.isValid() ? heading.charFormat().font() : m_rtfTable->font();
    QTextOption option = document->defaultTextOption();
    option.setTabStopDistance(QFontMetricsF(headingFont).horizontalAdvance(QStringLiteral("Date     ")));
    document->setDefaultTextOption(option);
    m_rtfTable->moveCursor(QTextCursor::Start);
}

void frmView::cmdPrint_Click()
{
    // The system's printer dialog first; its choice is offered again in the printer list.
    try {
        QString printer;
        if (!PrintDialog::Ask(this, printer))
            return; // cancelled: nothing is printed
        BuildSunTable(this, m_place, QStringLiteral("Print"), printer);
    } catch (const std::exception&) {
        MessageBox::Notice(this, QStringLiteral("Printer Error - Check Printer"));
    }
}

void frmView::cmdClose_Click()
{
    close();
}
