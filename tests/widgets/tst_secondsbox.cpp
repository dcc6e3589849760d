#include "platform/PictureLayer.h"
#include "widgets/SecondsBox.h"

#include <QBackingStore>
#include <QFont>
#include <QImage>
#include <QLabel>
#include <QList>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

// Records what the box asks of its layer; refuses pictures while Refuse is set.
struct LayerLog
{
    int created = 0;
    int asked = 0;
    QList<QImage> kept; // by number, since the last Forget
    QList<QPair<int, QRect>> shown;
    int hidden = 0;
    int forgotten = 0;
    bool refuse = false;
    bool none = false;   // the display has no layers
    bool failed = false; // the display refused the layer something
};

class FakeLayer final : public PictureLayer
{
public:
    explicit FakeLayer(LayerLog& log) : m_log(log) {}
    int Keep(const QImage& picture) override
    {
        if (m_log.refuse)
            return -1;
        m_log.kept.append(picture);
        return int(m_log.kept.size()) - 1;
    }
    bool Show(int number, const QRect& area) override
    {
        if (m_log.failed)
            return false;
        m_log.shown.append({number, area});
        return true;
    }
    void Hide() override { ++m_log.hidden; }
    void Forget() override
    {
        ++m_log.forgotten;
        m_log.kept.clear();
    }

private:
    LayerLog& m_log;
};

class FakeLayers final : public PictureLayers
{
public:
    explicit FakeLayers(LayerLog& log) : m_log(log) {}
    std::unique_ptr<PictureLayer> Create(QWidget* window) override
    {
        ++m_log.asked;
        if (m_log.none || !window || !window->isWindow())
            return nullptr;
        ++m_log.created;
        return std::make_unique<FakeLayer>(m_log);
    }

private:
    LayerLog& m_log;
};

// Counts the paint events a widget gets.
class PaintCounter final : public QObject
{
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

// A window with a label above the box, as the clock panel has.
struct Window
{
    QWidget top;
    QLabel* label;
    SecondsBox* box;
    Window()
    {
        auto* layout = new QVBoxLayout(&top);
        label = new QLabel(QStringLiteral("Sec"), &top);
        box = new SecondsBox(&top);
        box->setObjectName(QStringLiteral("txtSeconds"));
        layout->addWidget(label);
        layout->addWidget(box);
    }
    QRect BoxInWindow() const { return QRect(box->mapTo(&top, QPoint(0, 0)), box->size()); }
    // What the window's backing store holds where the box is.
    QImage StoreAtBox() const
    {
        const QPaintDevice* device = top.backingStore()->paintDevice();
        if (!device || device->devType() != QInternal::Image)
            return {};
        return static_cast<const QImage*>(device)->copy(BoxInWindow());
    }
};

// The box as its paint event draws it, in the format of `like`.
QImage Painted(SecondsBox* box, const QImage& like)
{
    return box->grab().toImage().convertToFormat(like.format());
}

// A shown window whose seconds box uses fake layers that record what they are asked.
struct Desk
{
    LayerLog log;
    FakeLayers layers{log};
    Window w;
    Desk()
    {
        w.box->SetLayers(&layers);
        w.top.show();
    }
};

} // namespace

class tst_SecondsBox : public QObject
{
    Q_OBJECT
private slots:
    void eachTextIsHandedToTheLayerOnceAndShownWithoutARepaint();
    void coveredBoxTakesItsLayerAwayAndRepaints();
    void seeThroughCoverTakesTheLayerAwayToo();
    void failedLayerIsDroppedForGood();
    void hiddenBoxTakesItsLayerAway();
    void movedBoxTakesItsLayerAlong();
    void fontChangeHandsNewPictures();
    void boxMovedToAnotherWindowGetsThatWindowsLayer();
    void refusedPictureIsPaintedInstead();
    void displayWithoutLayersIsAskedOnce();
    void withoutLayersAChangeIsCopiedIntoTheWindowAtOnce();
    void aChangeOnTheLayerIsStillAnnounced();
};

void tst_SecondsBox::eachTextIsHandedToTheLayerOnceAndShownWithoutARepaint()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    PaintCounter counter;
    w.box->installEventFilter(&counter);

    w.box->setText(QStringLiteral("07"));
    QCOMPARE(log.created, 1);
    QCOMPARE(log.kept.size(), 1);
    QCOMPARE(log.shown.size(), 1);
    QCOMPARE(log.shown.last(), qMakePair(0, w.BoxInWindow()));

    w.box->setText(QStringLiteral("08"));
    w.box->setText(QStringLiteral("07"));
    QCOMPARE(log.kept.size(), 2);
    QCOMPARE(log.shown.size(), 3);
    QCOMPARE(log.shown.at(1).first, 1);
    QCOMPARE(log.shown.at(2).first, 0);
    QVERIFY(log.kept.at(0) != log.kept.at(1));
    QCOMPARE(counter.paints, 0);
    QCOMPARE(log.created, 1);
    QCOMPARE(log.hidden, 0);
    // The picture handed over is the box as it paints itself with that text.
    QCOMPARE(log.kept.at(0), Painted(w.box, log.kept.at(0)));
}

void tst_SecondsBox::coveredBoxTakesItsLayerAwayAndRepaints()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("01"));
    QCOMPARE(log.shown.size(), 1);

    // A child of the window laid over half of the box.
    auto* cover = new QLabel(QStringLiteral("over"), &w.top);
    cover->setAutoFillBackground(true);
    cover->setGeometry(QRect(w.BoxInWindow().topLeft(), QSize(w.box->width() / 2, w.box->height())));
    cover->show();
    cover->raise();
    QCoreApplication::processEvents();
    PaintCounter counter;
    w.box->installEventFilter(&counter);

    w.box->setText(QStringLiteral("02"));
    QCOMPARE(log.hidden, 1);
    QCOMPARE(log.shown.size(), 1);
    QVERIFY(counter.paints >= 1);
    QCOMPARE(w.box->text(), QStringLiteral("02"));

    // Uncovered again, the next change goes through the layer.
    delete cover;
    QCoreApplication::processEvents();
    w.box->setText(QStringLiteral("03"));
    QCOMPARE(log.shown.size(), 2);
    QCOMPARE(log.shown.last().second, w.BoxInWindow());
}

void tst_SecondsBox::seeThroughCoverTakesTheLayerAwayToo()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("71"));
    QCOMPARE(log.shown.size(), 1);
    // A label with no background of its own over a corner of the box: the layer would hide
    // its text, and a copy into the window would paint over it.
    auto* cover = new QLabel(QStringLiteral("x"), &w.top);
    cover->setGeometry(QRect(w.BoxInWindow().topLeft(), QSize(6, 6)));
    cover->show();
    QCoreApplication::processEvents();
    PaintCounter counter;
    w.box->installEventFilter(&counter);
    w.box->setText(QStringLiteral("72"));
    QCOMPARE(log.hidden, 1);
    QCOMPARE(log.shown.size(), 1);
    QVERIFY(counter.paints >= 1);
}

void tst_SecondsBox::failedLayerIsDroppedForGood()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("81"));
    QCOMPARE(log.shown.size(), 1);

    log.failed = true;
    QTest::ignoreMessage(QtWarningMsg,
                         "The seconds box's picture layer failed; the box paints itself from now on.");
    w.box->setText(QStringLiteral("82"));
    QCOMPARE(log.hidden, 1);
    // Shown by the box itself at once.
    const QImage store = w.StoreAtBox();
    QCOMPARE(store, Painted(w.box, store));
    // And from then on, without asking for a layer again.
    log.failed = false;
    w.box->setText(QStringLiteral("83"));
    QCOMPARE(log.shown.size(), 1);
    QCOMPARE(log.asked, 1);
    QCOMPARE(w.StoreAtBox(), Painted(w.box, store));
}

void tst_SecondsBox::hiddenBoxTakesItsLayerAway()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("11"));
    QCOMPARE(log.hidden, 0);
    w.box->hide();
    QCOMPARE(log.hidden, 1);
    w.box->setText(QStringLiteral("12"));
    QCOMPARE(log.shown.size(), 1);
    // Hiding the window hides the box with it.
    w.box->show();
    QCoreApplication::processEvents();
    w.box->setText(QStringLiteral("13"));
    QCOMPARE(log.shown.size(), 2);
    w.top.hide();
    QCOMPARE(log.hidden, 2);
}

void tst_SecondsBox::movedBoxTakesItsLayerAlong()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("21"));
    const QRect before = w.BoxInWindow();
    QCOMPARE(log.shown.last().second, before);

    // The label above grows: the layout moves the box down, and its repaint there moves the
    // layer before the next change.
    w.label->setMinimumHeight(w.label->height() + 40);
    QTRY_VERIFY(w.BoxInWindow() != before);
    QTRY_COMPARE(log.shown.last().second, w.BoxInWindow());
    QCOMPARE(log.shown.last().first, 0);
}

void tst_SecondsBox::fontChangeHandsNewPictures()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("31"));
    const QSize before = log.kept.at(0).size();

    QFont font = w.box->font();
    font.setPointSizeF(font.pointSizeF() * 2);
    w.box->setFont(font);
    QCOMPARE(log.forgotten, 1);
    // The repaint of the larger box hands over its picture at the new size.
    QTRY_COMPARE(log.kept.size(), 1);
    QTRY_COMPARE(log.kept.at(0).size(), w.box->size());
    QVERIFY(log.kept.at(0).size() != before);
    QCOMPARE(log.shown.last(), qMakePair(0, w.BoxInWindow()));
}

void tst_SecondsBox::boxMovedToAnotherWindowGetsThatWindowsLayer()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("61"));
    QCOMPARE(log.created, 1);

    QWidget other;
    other.resize(200, 100);
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    w.box->setParent(&other);
    // The old window's layer goes at once.
    QCOMPARE(log.hidden, 1);
    w.box->move(10, 10);
    w.box->show();
    QCoreApplication::processEvents();
    w.box->setText(QStringLiteral("62"));
    QCOMPARE(log.created, 2);
    QCOMPARE(log.shown.last().second, QRect(QPoint(10, 10), w.box->size()));
    // A text kept on the old layer is handed to the new one again.
    w.box->setText(QStringLiteral("61"));
    QCOMPARE(log.kept.size(), 3);
    QCOMPARE(log.shown.last().first, 2);
}

void tst_SecondsBox::refusedPictureIsPaintedInstead()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    log.refuse = true;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("41"));
    QCOMPARE(log.shown.size(), 0);
    // Copied into the window instead, at once.
    const QImage store = w.StoreAtBox();
    QVERIFY(!store.isNull());
    QCOMPARE(store, Painted(w.box, store));
}

void tst_SecondsBox::displayWithoutLayersIsAskedOnce()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    log.none = true;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    for (const char* text : {"51", "52", "53"})
        w.box->setText(QString::fromLatin1(text));
    QCOMPARE(log.asked, 1);
    const QImage store = w.StoreAtBox();
    QCOMPARE(store, Painted(w.box, store));
}

void tst_SecondsBox::withoutLayersAChangeIsCopiedIntoTheWindowAtOnce()
{
    Window w;
    w.top.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    w.box->setText(QStringLiteral("00"));
    QCoreApplication::processEvents();
    PaintCounter counter;
    w.box->installEventFilter(&counter);
    const QImage zero = w.StoreAtBox();

    // No event is processed between the change and the look at the window's pixels.
    w.box->setText(QStringLiteral("59"));
    const QImage fiftyNine = w.StoreAtBox();
    QVERIFY(!fiftyNine.isNull());
    QVERIFY(fiftyNine != zero);
    QCOMPARE(counter.paints, 0);
    QCOMPARE(fiftyNine, Painted(w.box, fiftyNine));
}

void tst_SecondsBox::aChangeOnTheLayerIsStillAnnounced()
{
    Desk desk;
    LayerLog& log = desk.log;
    Window& w = desk.w;
    QVERIFY(QTest::qWaitForWindowExposed(&w.top));
    QSignalSpy changes(w.box, &SecondsBox::textChanged);
    w.box->setText(QStringLiteral("42"));
    QCOMPARE(log.shown.size(), 1);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(w.box->text(), QStringLiteral("42"));
    QCOMPARE(w.box->property("text").toString(), QStringLiteral("42"));
}

QTEST_MAIN(tst_SecondsBox)
#include "tst_secondsbox.moc"
