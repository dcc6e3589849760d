#pragma once

#include "sun/SunTable.h"

#include <QDialog>

class QTextEdit;

// The table viewer: shows "TWTable.rtf" and prints the table it was made from.
class frmView : public QDialog
{
    Q_OBJECT
public:
    explicit frmView(const SunTablePlace& place, QWidget* parent = nullptr);

    void cmdPrint_Click();
    void cmdClose_Click();
    QTextEdit* TableText() const { return m_rtfTable; }
    // Empty when the document was shown, else why it could not be read.
    QString LoadError() const { return m_loadError; }

private:
    // The rows are written at 5 points: the viewer shows the document twice its size.
    static constexpr double DisplayFactor = 2.0;
    void LineUpColumns();

    SunTablePlace m_place;
    QTextEdit* m_rtfTable;
    QString m_loadError;
};
