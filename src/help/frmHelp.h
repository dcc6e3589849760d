#pragma once

#include <QDialog>
#include <QString>

class QTextEdit;

// The help window: a rich-text document shown read-only. Form_Load reads "Help.RTF" by its
// bare name, so from the current folder; the help picture of the main window gives it the
// path of the user guide installed with the program instead.
class frmHelp : public QDialog
{
    Q_OBJECT
public:
    explicit frmHelp(QWidget* parent = nullptr);

    // Reads the document into the window. When it cannot be read, says so ("Can't open ",
    // the file, the error number and its description) and returns false.
    bool Form_Load(const QString& path = QStringLiteral("Help.RTF"));

    QTextEdit* Document() const { return m_rtfHelp; }

    // The message for a document that cannot be opened.
    static QString CannotOpen(const QString& file, int number, const QString& description);

private:
    QTextEdit* m_rtfHelp;
};
