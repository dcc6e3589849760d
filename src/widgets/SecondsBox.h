#pragma once

#include <QHash>
#include <QPixmap>
#include <QStaticText>
#include <QWidget>

// A display-only box that shows a short text, such as the two digits of the seconds, looking
// like a read-only line edit. It is built for a text that changes every second all day: the
// frame is drawn once into a pixmap, each text is laid out once and kept, and a change
// repaints only this box. A line edit would shape the text anew and draw its frame through
// the style at every change.
class SecondsBox final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
public:
    explicit SecondsBox(QWidget* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void textChanged(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void DropCaches();
    const QStaticText& Laid(const QString& text);

    QString m_text;
    QPixmap m_frame;
    QRect m_textArea;
    // The texts shown so far, laid out for the current font (sixty at most for the seconds).
    QHash<QString, QStaticText> m_laid;
};
