// The X11 picture layer against a real X server: the test runs under an Xvfb of its own.
#include "platform/PictureLayer.h"
#include "widgets/SecondsBox.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdlib>
#include <xcb/xcb.h>

namespace {

// A plain green window that counts the mouse presses it gets.
class Canvas final : public QWidget
{
public:
    Canvas()
    {
        setFixedSize(200, 120);
        QPalette p = palette();
        p.setColor(QPalette::Window, Qt::green);
        setPalette(p);
        setAutoFillBackground(true);
    }
    int presses = 0;
    // Makes the native window again, as the toolkit does on some changes of the window's
    // flags; the old one takes its children with it.
    void Remake()
    {
        destroy();
        create();
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        ++presses;
        QWidget::mousePressEvent(event);
    }
};

QImage Filled(QColor colour, QSize size = QSize(40, 20))
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(colour);
    return image;
}

// The colour the X server shows at `point` of the window (what is on the screen, layers
// included); the query is a round trip, so every request sent before it has been carried out.
QColor ShownAt(const QWidget& window, QPoint point)
{
    const QPoint onScreen = window.mapToGlobal(point);
    const QImage shot = window.screen()->grabWindow(0, onScreen.x(), onScreen.y(), 1, 1).toImage();
    return shot.isNull() ? QColor() : shot.pixelColor(0, 0);
}

// Counts the X server's error replies as they reach the toolkit's event loop.
class XErrors final : public QAbstractNativeEventFilter
{
public:
    int count = 0;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override
    {
        if (type == "xcb_generic_event_t" &&
            (static_cast<xcb_generic_event_t*>(message)->response_type & 0x7f) == 0)
            ++count;
        return false;
    }
};

xcb_connection_t* Connection()
{
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// Waits for the server to have handled every request sent so far, and for the toolkit to
// have taken in whatever came back.
void RoundTrip()
{
    std::free(xcb_get_input_focus_reply(Connection(), xcb_get_input_focus(Connection()), nullptr));
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

// The children the server has under the X window of `window`.
QList<xcb_window_t> XChildren(const QWidget& window)
{
    QList<xcb_window_t> children;
    xcb_query_tree_reply_t* tree = xcb_query_tree_reply(
        Connection(), xcb_query_tree(Connection(), xcb_window_t(window.windowHandle()->winId())), nullptr);
    if (tree) {
        const xcb_window_t* ids = xcb_query_tree_children(tree);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i)
            children.append(ids[i]);
        std::free(tree);
    }
    return children;
}

// What the screen shows over `area` of the window.
QImage ShownOver(const QWidget& window, const QRect& area)
{
    const QPoint onScreen = window.mapToGlobal(area.topLeft());
    return window.screen()
        ->grabWindow(0, onScreen.x(), onScreen.y(), area.width(), area.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

class tst_PictureLayer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void showsKeptPicturesWhereAsked();
    void hideShowsTheWindowAgain();
    void forgetStartsTheNumbersAgain();
    void aWindowMadeAnewGetsTheLayerBack();
    void stayingOnTopKeepsTheLayer();
    void thePointerGoesThroughToTheWindow();
    void refusesWhatOneRequestCannotCarry();
    void canBeSwitchedOff();
    void aRefusedRequestIsReported();
    void secondsBoxShowsEachSecondOnTheScreen_data();
    void secondsBoxShowsEachSecondOnTheScreen();

private:
    std::unique_ptr<PictureLayers> m_layers;
    std::unique_ptr<Canvas> m_window;
    XErrors m_errors;
};

void tst_PictureLayer::initTestCase()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        QSKIP("needs the xcb platform on an X server");
    QCoreApplication::instance()->installNativeEventFilter(&m_errors);
    m_layers = PictureLayers::Make();
}

void tst_PictureLayer::init()
{
    m_errors.count = 0;
    m_window = std::make_unique<Canvas>();
    m_window->move(0, 0);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_COMPARE(ShownAt(*m_window, QPoint(5, 5)), QColor(Qt::green));
}

void tst_PictureLayer::cleanup()
{
    m_window.reset();
    // No request of the layer may have been refused by the server.
    RoundTrip();
    QCOMPARE(m_errors.count, 0);
}

void tst_PictureLayer::showsKeptPicturesWhereAsked()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    QCOMPARE(layer->Keep(Filled(Qt::red)), 0);
    QCOMPARE(layer->Keep(Filled(Qt::blue)), 1);
    // Nothing is shown before it is asked for.
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::green));

    layer->Show(0, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(10, 10)), QColor(Qt::red));
    QCOMPARE(ShownAt(*m_window, QPoint(49, 29)), QColor(Qt::red));
    QCOMPARE(ShownAt(*m_window, QPoint(50, 30)), QColor(Qt::green));
    QCOMPARE(ShownAt(*m_window, QPoint(9, 9)), QColor(Qt::green));

    layer->Show(1, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(30, 20)), QColor(Qt::blue));

    // Moved: the old place shows the window again.
    layer->Show(1, QRect(100, 60, 40, 20));
    QTRY_COMPARE(ShownAt(*m_window, QPoint(30, 20)), QColor(Qt::green));
    QCOMPARE(ShownAt(*m_window, QPoint(120, 70)), QColor(Qt::blue));

    // The window repainting itself does not draw over the layer.
    m_window->repaint();
    QCOMPARE(ShownAt(*m_window, QPoint(120, 70)), QColor(Qt::blue));

    // A number never handed out changes nothing.
    layer->Show(7, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(120, 70)), QColor(Qt::blue));
}

void tst_PictureLayer::hideShowsTheWindowAgain()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    const int red = layer->Keep(Filled(Qt::red));
    layer->Show(red, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::red));
    // What the layer covered is drawn again by the window, as it handles the server's notice.
    layer->Hide();
    QTRY_COMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::green));
    layer->Show(red, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::red));
    // The layer goes with its owner.
    layer.reset();
    QTRY_COMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::green));
}

void tst_PictureLayer::forgetStartsTheNumbersAgain()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    layer->Keep(Filled(Qt::red));
    layer->Keep(Filled(Qt::blue));
    layer->Show(1, QRect(10, 10, 40, 20));
    layer->Forget();
    // The one shown stays until the next Show.
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::blue));
    QCOMPARE(layer->Keep(Filled(Qt::yellow, QSize(60, 30))), 0);
    layer->Show(0, QRect(10, 10, 60, 30));
    QCOMPARE(ShownAt(*m_window, QPoint(65, 35)), QColor(Qt::yellow));
    layer->Show(1, QRect(10, 10, 60, 30));
    QCOMPARE(ShownAt(*m_window, QPoint(65, 35)), QColor(Qt::yellow));
}

void tst_PictureLayer::aWindowMadeAnewGetsTheLayerBack()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    const int red = layer->Keep(Filled(Qt::red));
    layer->Show(red, QRect(10, 10, 40, 20));
    const WId before = m_window->winId();
    m_window->Remake();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QVERIFY(m_window->winId() != before);
    QTRY_COMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::green));
    layer->Show(red, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::red));
    layer->Hide();
    QTRY_COMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::green));
}

void tst_PictureLayer::stayingOnTopKeepsTheLayer()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    const int red = layer->Keep(Filled(Qt::red));
    layer->Show(red, QRect(10, 10, 40, 20));
    // As the main window's pin does.
    m_window->setWindowFlag(Qt::WindowStaysOnTopHint, true);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    layer->Show(red, QRect(10, 10, 40, 20));
    QTRY_COMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::red));
    m_window->setWindowFlag(Qt::WindowStaysOnTopHint, false);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    layer->Show(red, QRect(12, 12, 40, 20));
    QTRY_COMPARE(ShownAt(*m_window, QPoint(50, 30)), QColor(Qt::red));
}

void tst_PictureLayer::thePointerGoesThroughToTheWindow()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    layer->Show(layer->Keep(Filled(Qt::red)), QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::red));
    // A real click of the X server on the layer, through the XTEST extension.
    const QPoint at = m_window->mapToGlobal(QPoint(20, 20));
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"),
                  {QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
                   QStringLiteral("click"), QStringLiteral("1")});
    if (!xdotool.waitForFinished(10000) || xdotool.exitCode() != 0)
        QSKIP("xdotool is not available");
    QTRY_COMPARE(m_window->presses, 1);
}

void tst_PictureLayer::refusesWhatOneRequestCannotCarry()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    // Far more than the largest request the server takes.
    QCOMPARE(layer->Keep(Filled(Qt::red, QSize(4000, 4000))), -1);
    QCOMPARE(layer->Keep(QImage()), -1);
    // Other formats are taken as they would be drawn.
    QImage rgb888(40, 20, QImage::Format_RGB888);
    rgb888.fill(Qt::magenta);
    const int number = layer->Keep(rgb888);
    QCOMPARE(number, 0);
    layer->Show(number, QRect(10, 10, 40, 20));
    QCOMPARE(ShownAt(*m_window, QPoint(20, 20)), QColor(Qt::magenta));
}

void tst_PictureLayer::canBeSwitchedOff()
{
    qputenv("TARROWIND_NO_LAYERS", "1");
    const bool made = m_layers->Create(m_window.get()) != nullptr;
    qunsetenv("TARROWIND_NO_LAYERS");
    QVERIFY(!made);
    QVERIFY(m_layers->Create(m_window.get()) != nullptr);
    // Only a top-level window carries a layer.
    QWidget child(m_window.get());
    QVERIFY(m_layers->Create(&child) == nullptr);
}

void tst_PictureLayer::aRefusedRequestIsReported()
{
    auto layer = m_layers->Create(m_window.get());
    QVERIFY(layer);
    const int red = layer->Keep(Filled(Qt::red));
    const int blue = layer->Keep(Filled(Qt::blue));
    QVERIFY(layer->Show(red, QRect(10, 10, 40, 20)));
    RoundTrip();
    QCOMPARE(m_errors.count, 0);
    // The layer's window destroyed behind its back: its next requests are refused.
    const QList<xcb_window_t> children = XChildren(*m_window);
    QCOMPARE(children.size(), 1);
    xcb_destroy_window(Connection(), children.first());
    QVERIFY(layer->Show(blue, QRect(10, 10, 40, 20)));
    RoundTrip();
    // Both requests of that Show (the background set, the window cleared) are refused. The
    // toolkit reads the server's errors on a thread of its own and hands them over later
    // than the round trip's reply: they are waited for, on a busy machine too.
    QTRY_COMPARE(m_errors.count, 2);
    QVERIFY(!layer->Show(red, QRect(10, 10, 40, 20)));
    QCOMPARE(layer->Keep(Filled(Qt::yellow)), -1);
    m_errors.count = 0;
}

void tst_PictureLayer::secondsBoxShowsEachSecondOnTheScreen_data()
{
    QTest::addColumn<bool>("layers");
    QTest::newRow("through the layer") << true;
    QTest::newRow("copied into the window") << false;
}

void tst_PictureLayer::secondsBoxShowsEachSecondOnTheScreen()
{
    QFETCH(bool, layers);
    if (!layers)
        qputenv("TARROWIND_NO_LAYERS", "1");
    auto* layout = new QVBoxLayout(m_window.get());
    auto* box = new SecondsBox(m_window.get());
    layout->addWidget(box);
    box->SetLayers(m_layers.get());
    box->setText(QStringLiteral("00"));
    layout->activate();
    QTRY_VERIFY(box->isVisible());
    QCoreApplication::processEvents();
    const QRect area(box->mapTo(m_window.get(), QPoint(0, 0)), box->size());
    QTRY_COMPARE(ShownOver(*m_window, area), box->grab().toImage().convertToFormat(QImage::Format_RGB32));

    // Each change is on the screen once the server has the requests sent with it, with no
    // pass of the event loop in between.
    QImage previous;
    for (const char* text : {"07", "08", "59", "07"}) {
        box->setText(QString::fromLatin1(text));
        const QImage shown = ShownOver(*m_window, area);
        QCOMPARE(shown, box->grab().toImage().convertToFormat(QImage::Format_RGB32));
        QVERIFY(shown != previous);
        previous = shown;
    }
    QCOMPARE(XChildren(*m_window).size(), layers ? 1 : 0);
    qunsetenv("TARROWIND_NO_LAYERS");
}

QTEST_MAIN(tst_PictureLayer)
#include "tst_picturelayer.moc"
