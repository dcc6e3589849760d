#include "help/frmHelp.h"

#include "widgets/MessageBox.h"
#include "widgets/RtfReader.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>

#include <cerrno>
#include <cstring>

frmHelp::frmHelp(QWidget* parent) : QDialog(parent), m_rtfHelp(new QTextEdit(this))
{
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(QStringLiteral("Tarrowind Help"));
    m_rtfHelp->setObjectName(QStringLiteral("rtfHelp"));
    m_rtfHelp->setAccessibleName(QStringLiteral("Help"));
    m_rtfHelp->setReadOnly(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_rtfHelp);
    resize(640, 560);
}

QString frmHelp::CannotOpen(const QString& file, int number, const QString& description)
{
    return QStringLiteral("Can't open ") + file + u'\r' + QString::number(number) + u'-' + description;
}

bool frmHelp::Form_Load(const QString& path)
{
    QFile file(path);
    errno = 0;
    // A folder of that name opens on some systems: it is no document.
    const bool folder = QFileInfo(path).isDir();
    if (folder || !file.open(QIODevice::ReadOnly)) {
        // The system's own number and words for why it could not be opened.
        const int number = folder ? EISDIR : errno != 0 ? errno : ENOENT;
        MessageBox::Notice(this, CannotOpen(path, number, QString::fromLocal8Bit(std::strerror(number))));
        return false;
    }
    if (file.size() > kMaxRtfFileSize) {
        MessageBox::Notice(this, CannotOpen(path, EFBIG, QString::fromLocal8Bit(std::strerror(EFBIG))));
        return false;
    }
    ReadRtf(file.readAll(), *m_rtfHelp->document());
    m_rtfHelp->document()->setDocumentMargin(12);
    // Shown from its beginning.
    m_rtfHelp->moveCursor(QTextCursor::Start);
    m_rtfHelp->ensureCursorVisible();
    return true;
}
