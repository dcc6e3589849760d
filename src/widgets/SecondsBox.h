#pragma once

#include <QHash>
#include <QImage>
#include <QPointer>
#include <QWidget>

#include <memory>

class PictureLayer;
class PictureLayers;

// A display-only box that shows a short text, such as the two digits of the seconds, looking
// like a read-only line edit. It is built for a text that changes every second all day: each
// text is drawn once, frame and all, into a picture that is kept, so a change costs one copy
// of a small picture. A line edit would shape the text anew and draw its frame through the
// style at every change. While nothing covers the box, a change is shown without a repaint:
// through a picture layer, where the display server keeps the pictures (X11), or else by
// copying the picture straight into the window's backing store and flushing that place.
// Otherwise the box is repainted the usual way.
class SecondsBox final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
public:
    explicit SecondsBox(QWidget* parent = nullptr);
    ~SecondsBox() override;

    // Lets the box show its texts through picture layers made by `layers` (not owned; it
    // outlives the box); nullptr, the default, never uses one.
    void SetLayers(PictureLayers* layers);

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
    void hideEvent(QHideEvent* event) override;

private:
    const QImage& Drawn(const QString& text);
    bool Uncovered() const;
    bool ShowOnLayer();
    void HideLayer();
    void DropLayer();
    void ForgetPictures();
    bool PaintIntoWindow(const QImage& drawn);

    QString m_text;
    // The box as drawn with each text shown so far (sixty at most for the seconds), for the
    // current size, font, palette and style.
    QHash<QString, QImage> m_drawn;
    PictureLayers* m_layers = nullptr;
    std::unique_ptr<PictureLayer> m_layer;
    // The window the layer is over.
    QPointer<const QWidget> m_layerWindow;
    // The number of each text's picture kept on the layer.
    QHash<QString, int> m_kept;
    // The layer is shown over the box: what the window itself holds there may be older.
    bool m_onLayer = false;
};
