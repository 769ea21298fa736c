#!/bin/sh
# Redraws the program's artwork into resources/: the toolbar images (24x24 and @2x),
# the application icon, the splash picture and the logo shown for a new item.
#
# Everything is drawn with QPainter from the shapes below, so the pictures can be changed
# here and redrawn; the build never runs this, the generated files are kept in the tree.
# Needs: g++, pkg-config, the Qt 6 Gui development files and ImageMagick's `convert`
# (Qt writes no GIF, so the logo is drawn as PNG and converted).
#
# Usage: scripts/make-artwork.sh            (from anywhere inside the checkout)
#        CONVERT=/usr/bin/convert scripts/make-artwork.sh   (to pick a particular ImageMagick)
set -eu
CONVERT=${CONVERT:-convert}

ROOT=$(cd "$(dirname "$0")/.." && pwd)
OUT="$ROOT/resources"
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

cat >"$WORK/artwork.cpp" <<'EOF'
#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <functional>

namespace {

// One palette for every picture, so the toolbar reads as one family.
const QColor kInk(0x34, 0x49, 0x5e);
const QColor kSlate(0x5d, 0x6d, 0x7e);
const QColor kBlue(0x2d, 0x7d, 0xd2);
const QColor kDeepBlue(0x1b, 0x4f, 0x8c);
const QColor kSky(0xd6, 0xea, 0xf8);
const QColor kGreen(0x2e, 0xa8, 0x5a);
const QColor kRed(0xd9, 0x45, 0x3c);
const QColor kAmber(0xf0, 0xa2, 0x02);
const QColor kWood(0xb9, 0x7a, 0x3c);
const QColor kDarkWood(0x8a, 0x55, 0x25);
const QColor kGrey(0x9a, 0xa5, 0xb1);
const QColor kLine(0xb4, 0xbf, 0xca);
const QColor kPaper(0xff, 0xff, 0xff);

using Draw = std::function<void(QPainter&)>;

QPen pen(const QColor& c, qreal w)
{
    return QPen(c, w, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// A sheet of paper: the item record.
void card(QPainter& p, QRectF r, const QColor& fill = kPaper, bool lines = true)
{
    p.setPen(pen(kInk, 1.2));
    p.setBrush(fill);
    p.drawRoundedRect(r, 1.6, 1.6);
    if (!lines)
        return;
    // Text lines; the last one stops short like the end of a paragraph.
    p.setPen(pen(kLine, 1.4));
    const qreal x0 = r.left() + 3, x1 = r.right() - 3, last = r.bottom() - 2.5;
    for (qreal y = r.top() + 4; y < last; y += 3.2) {
        const bool isLast = y + 3.2 >= last;
        p.drawLine(QPointF(x0, y), QPointF(isLast ? x0 + (x1 - x0) * 0.6 : x1, y));
    }
}

// A round mark in a corner; the white ring keeps it apart from what lies under it.
void badge(QPainter& p, QPointF c, qreal r, const QColor& fill)
{
    p.setPen(QPen(kPaper, 1.4));
    p.setBrush(fill);
    p.drawEllipse(c, r, r);
}

void plusGlyph(QPainter& p, QPointF c, qreal half)
{
    p.setPen(pen(kPaper, 2.0));
    p.drawLine(QPointF(c.x() - half, c.y()), QPointF(c.x() + half, c.y()));
    p.drawLine(QPointF(c.x(), c.y() - half), QPointF(c.x(), c.y() + half));
}

void checkGlyph(QPainter& p, QPointF c)
{
    p.setPen(pen(kPaper, 1.9));
    p.setBrush(Qt::NoBrush);
    QPainterPath tick;
    tick.moveTo(c.x() - 2.6, c.y() + 0.1);
    tick.lineTo(c.x() - 0.7, c.y() + 2.0);
    tick.lineTo(c.x() + 2.7, c.y() - 1.9);
    p.drawPath(tick);
}

// A filled triangle with softened corners (stroked with its own colour).
void triangle(QPainter& p, QPointF a, QPointF b, QPointF c, const QColor& col)
{
    p.setPen(pen(col, 1.6));
    p.setBrush(col);
    p.drawPolygon(QPolygonF{a, b, c});
}

// ---- toolbar images, drawn on a 24x24 grid -------------------------------------------------

void drawOptions(QPainter& p)
{
    const QPointF c(12, 12);
    QPainterPath gear;
    gear.addEllipse(c, 7.4, 7.4);
    for (int i = 0; i < 8; ++i) {
        QPainterPath tooth;
        tooth.addRoundedRect(QRectF(-2.1, -10.6, 4.2, 5.0), 0.8, 0.8);
        QTransform t;
        t.translate(c.x(), c.y());
        t.rotate(i * 45.0);
        gear = gear.united(t.map(tooth));
    }
    QPainterPath hole;
    hole.addEllipse(c, 3.1, 3.1);
    gear = gear.subtracted(hole);
    p.setPen(pen(kInk, 1.0));
    p.setBrush(kSlate);
    p.drawPath(gear);
}

void drawAdd(QPainter& p)
{
    card(p, QRectF(3.5, 2.5, 13, 17));
    badge(p, QPointF(17.2, 17.2), 5.8, kGreen);
    plusGlyph(p, QPointF(17.2, 17.2), 2.9);
}

void drawDel(QPainter& p)
{
    p.setPen(pen(kRed.darker(125), 1.0));
    p.setBrush(kRed);
    p.drawRoundedRect(QRectF(9, 2.5, 6, 3), 1, 1);          // handle
    p.drawRoundedRect(QRectF(4, 5, 16, 3), 1.2, 1.2);        // lid
    QPainterPath body;
    body.moveTo(5.6, 9);
    body.lineTo(18.4, 9);
    body.lineTo(17.2, 21.5);
    body.lineTo(6.8, 21.5);
    body.closeSubpath();
    p.drawPath(body);
    p.setPen(pen(kPaper, 1.3));
    for (qreal x : {9.3, 12.0, 14.7})
        p.drawLine(QPointF(x, 11.5), QPointF(x, 19));
}

void drawFirst(QPainter& p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kBlue);
    p.drawRoundedRect(QRectF(4.5, 5, 3, 14), 1, 1);
    triangle(p, QPointF(19, 5.8), QPointF(19, 18.2), QPointF(9.6, 12), kBlue);
}

void drawPrev(QPainter& p)
{
    triangle(p, QPointF(16.5, 5.8), QPointF(16.5, 18.2), QPointF(7, 12), kBlue);
}

void drawNext(QPainter& p)
{
    triangle(p, QPointF(7.5, 5.8), QPointF(7.5, 18.2), QPointF(17, 12), kBlue);
}

void drawLast(QPainter& p)
{
    triangle(p, QPointF(5, 5.8), QPointF(5, 18.2), QPointF(14.4, 12), kBlue);
    p.setPen(Qt::NoPen);
    p.setBrush(kBlue);
    p.drawRoundedRect(QRectF(16.5, 5, 3, 14), 1, 1);
}

// Three records stacked: the views; the mark in the corner tells which items they hold.
void stack(QPainter& p, const QColor& front)
{
    card(p, QRectF(8.5, 2.5, 12, 14), QColor(0xe4, 0xea, 0xf0), false);
    card(p, QRectF(6, 5, 12, 14), QColor(0xf1, 0xf4, 0xf7), false);
    card(p, QRectF(3.5, 7.5, 12, 14), front);
}

void drawViewAll(QPainter& p)
{
    stack(p, kPaper);
    badge(p, QPointF(17.6, 17.6), 5.6, kBlue);
    p.setPen(pen(kPaper, 1.5));
    for (qreal y : {15.6, 17.6, 19.6})
        p.drawLine(QPointF(15.4, y), QPointF(19.8, y));
}

void drawViewActive(QPainter& p)
{
    stack(p, kPaper);
    badge(p, QPointF(17.6, 17.6), 5.6, kGreen);
    triangle(p, QPointF(16.1, 15.0), QPointF(16.1, 20.2), QPointF(20.1, 17.6), kPaper);
}

void drawViewInactive(QPainter& p)
{
    stack(p, kPaper);
    badge(p, QPointF(17.6, 17.6), 5.6, kGrey.darker(115));
    p.setPen(Qt::NoPen);
    p.setBrush(kPaper);
    p.drawRoundedRect(QRectF(15.4, 15.4, 4.4, 4.4), 0.6, 0.6);
}

void drawFind(QPainter& p)
{
    p.setPen(pen(kInk, 3.4));
    p.drawLine(QPointF(15, 15), QPointF(20.5, 20.5));
    p.setPen(pen(kInk, 2.0));
    p.setBrush(kSky);
    p.drawEllipse(QPointF(10, 10), 6.4, 6.4);
    p.setPen(pen(kPaper, 1.5));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(6.2, 6.2, 7.6, 7.6), 100 * 16, 70 * 16);
}

void drawUpload(QPainter& p)
{
    QPainterPath cloud;
    const auto puff = [&cloud](QPointF c, qreal r) {
        QPainterPath e;
        e.addEllipse(c, r, r);
        cloud = cloud.united(e);
    };
    puff(QPointF(7.6, 14.2), 4.6);
    puff(QPointF(12.8, 10.4), 6.2);
    puff(QPointF(17.6, 14.4), 4.3);
    QPainterPath base;
    base.addRoundedRect(QRectF(3.0, 13.6, 18.9, 5.8), 2.8, 2.8);
    cloud = cloud.united(base);
    p.setPen(pen(kDeepBlue, 1.0));
    p.setBrush(kBlue);
    p.drawPath(cloud);
    // The arrow going up into the web space.
    p.setPen(pen(kPaper, 2.1));
    p.setBrush(Qt::NoBrush);
    p.drawLine(QPointF(12.6, 17.6), QPointF(12.6, 9.4));
    QPainterPath head;
    head.moveTo(9.2, 12.6);
    head.lineTo(12.6, 9.2);
    head.lineTo(16.0, 12.6);
    p.drawPath(head);
}

void drawAutoMail(QPainter& p)
{
    const QRectF env(2.5, 5.5, 17, 12.5);
    p.setPen(pen(kInk, 1.2));
    p.setBrush(QColor(0xfd, 0xf1, 0xd0));
    p.drawRoundedRect(env, 1.4, 1.4);
    p.setBrush(Qt::NoBrush);
    p.setPen(pen(kAmber.darker(140), 1.2));
    QPainterPath flap;
    flap.moveTo(env.left() + 0.8, env.top() + 0.8);
    flap.lineTo(env.center().x(), env.top() + 7.4);
    flap.lineTo(env.right() - 0.8, env.top() + 0.8);
    p.drawPath(flap);
    badge(p, QPointF(17.6, 17.6), 5.6, kGreen);
    checkGlyph(p, QPointF(17.6, 17.6));
}

void drawPreview(QPainter& p)
{
    const QRectF win(2.5, 3.5, 19, 17);
    p.setPen(pen(kInk, 1.2));
    p.setBrush(kPaper);
    p.drawRoundedRect(win, 1.6, 1.6);
    p.setPen(Qt::NoPen);
    p.setBrush(kBlue);
    QPainterPath bar;
    bar.addRoundedRect(QRectF(3.1, 4.1, 17.8, 3.6), 1.0, 1.0);
    p.drawPath(bar);
    p.setBrush(kPaper);
    for (qreal x : {5.2, 7.4, 9.6})
        p.drawEllipse(QPointF(x, 5.9), 0.75, 0.75);
    // The advertisement: a picture on the left, text beside it.
    p.setBrush(kSky);
    p.drawRect(QRectF(4.5, 9.6, 7, 8.4));
    p.setBrush(kGreen);
    p.drawPolygon(QPolygonF{QPointF(4.5, 18), QPointF(7.4, 13.2), QPointF(9.4, 16), QPointF(10.4, 14.8), QPointF(11.5, 16.4), QPointF(11.5, 18)});
    p.setBrush(kAmber);
    p.drawEllipse(QPointF(9.5, 11.6), 1.1, 1.1);
    p.setPen(pen(kLine, 1.4));
    for (qreal y : {10.6, 13.4, 16.2})
        p.drawLine(QPointF(13.6, y), QPointF(y > 16 ? 16.8 : 19.2, y));
}

// An auction gavel on its block; the handle runs down to the right.
void gavel(QPainter& p, QPointF at, qreal scale)
{
    p.save();
    p.translate(at);
    p.scale(scale, scale);
    p.setPen(pen(kDarkWood, 1.0));
    p.setBrush(kDarkWood);
    p.drawRoundedRect(QRectF(-6.5, 9.0, 11, 3.2), 1.2, 1.2);  // sound block
    p.rotate(45);
    p.setBrush(kWood);
    p.drawRoundedRect(QRectF(1.5, -1.3, 11.5, 2.6), 1.2, 1.2); // handle
    p.drawRoundedRect(QRectF(-3.2, -6.2, 6.0, 12.4), 1.6, 1.6); // head
    p.setPen(pen(kDarkWood, 1.2));
    p.drawLine(QPointF(-3.0, -3.9), QPointF(2.6, -3.9));
    p.drawLine(QPointF(-3.0, 3.9), QPointF(2.6, 3.9));
    p.restore();
}

void drawAddItem(QPainter& p)
{
    gavel(p, QPointF(8.6, 8.8), 1.0);
    badge(p, QPointF(18.0, 6.2), 5.4, kGreen);
    plusGlyph(p, QPointF(18.0, 6.2), 2.7);
}

void drawViewListing(QPainter& p)
{
    p.save();
    p.translate(12.5, 11.5);
    p.rotate(-45);
    QPainterPath tag;
    tag.moveTo(-10.0, 0);
    tag.lineTo(-4.6, -5.6);
    tag.lineTo(8.4, -5.6);
    tag.quadTo(9.6, -5.6, 9.6, -4.4);
    tag.lineTo(9.6, 4.4);
    tag.quadTo(9.6, 5.6, 8.4, 5.6);
    tag.lineTo(-4.6, 5.6);
    tag.closeSubpath();
    QPainterPath hole;
    hole.addEllipse(QPointF(-5.0, 0), 1.6, 1.6);
    p.setPen(pen(kAmber.darker(135), 1.0));
    p.setBrush(kAmber);
    p.drawPath(tag.subtracted(hole));
    p.setPen(pen(kPaper, 1.4));
    p.drawLine(QPointF(-0.6, -2.2), QPointF(6.4, -2.2));
    p.drawLine(QPointF(-0.6, 1.4), QPointF(4.4, 1.4));
    p.restore();
    // The string through the hole.
    p.setPen(pen(kInk, 1.2));
    p.setBrush(Qt::NoBrush);
    QPainterPath string;
    string.moveTo(8.4, 8.0);
    string.cubicTo(6.0, 5.0, 4.0, 3.5, 2.5, 2.5);
    p.drawPath(string);
}

void drawViewAllAuc(QPainter& p)
{
    p.setPen(pen(kDarkWood, 1.0));
    p.setBrush(kWood);
    p.drawRoundedRect(QRectF(3.5, 3.0, 17, 19.5), 1.8, 1.8);
    p.setPen(Qt::NoPen);
    p.setBrush(kPaper);
    p.drawRect(QRectF(5.5, 5.5, 13, 15));
    p.setPen(pen(kInk, 1.0));
    p.setBrush(kSlate);
    p.drawRoundedRect(QRectF(8.5, 1.5, 7, 3.6), 1.0, 1.0);
    const QColor marks[] = {kGreen, kGreen, kGrey, kGreen};
    for (int i = 0; i < 4; ++i) {
        const qreal y = 8.0 + i * 3.2;
        p.setPen(Qt::NoPen);
        p.setBrush(marks[i]);
        p.drawRect(QRectF(7.0, y - 1.0, 2.1, 2.1));
        p.setPen(pen(kLine, 1.3));
        p.drawLine(QPointF(10.8, y), QPointF(i == 3 ? 14.5 : 16.8, y));
    }
}

void drawExit(QPainter& p)
{
    p.setPen(pen(kInk, 1.2));
    p.setBrush(QColor(0xe4, 0xea, 0xf0));
    p.drawRect(QRectF(3.5, 2.5, 11, 19));                     // frame
    p.setBrush(kSlate);
    QPainterPath door;                                          // door swung open
    door.moveTo(3.5, 2.5);
    door.lineTo(10.5, 4.8);
    door.lineTo(10.5, 23.2);
    door.lineTo(3.5, 21.5);
    door.closeSubpath();
    p.drawPath(door);
    p.setPen(Qt::NoPen);
    p.setBrush(kPaper);
    p.drawEllipse(QPointF(8.9, 13.2), 0.9, 0.9);
    // The way out.
    p.setPen(pen(kPaper, 4.2));
    p.drawLine(QPointF(12.6, 12.5), QPointF(19.2, 12.5));
    p.setPen(pen(kRed, 2.2));
    p.drawLine(QPointF(12.6, 12.5), QPointF(19.6, 12.5));
    triangle(p, QPointF(17.0, 8.6), QPointF(21.6, 12.5), QPointF(17.0, 16.4), kRed);
}

void drawHelp(QPainter& p)
{
    p.setPen(pen(kDeepBlue, 1.0));
    p.setBrush(kBlue);
    p.drawEllipse(QPointF(12, 12), 9.8, 9.8);
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setBold(true);
    f.setPixelSize(15);
    p.setFont(f);
    p.setPen(kPaper);
    p.drawText(QRectF(2, 2.6, 20, 20), Qt::AlignCenter, QStringLiteral("?"));
}

// ---- the program's mark: a tally of four strokes crossed by a fifth -------------------------

void tallyMark(QPainter& p, QRectF box, const QColor& strokes, const QColor& cross)
{
    const qreal w = box.width(), h = box.height();
    const qreal sw = w * 0.085;
    p.setPen(pen(strokes, sw));
    for (int i = 0; i < 4; ++i) {
        const qreal x = box.left() + w * (0.24 + i * 0.17);
        p.drawLine(QPointF(x, box.top() + h * 0.2), QPointF(x, box.top() + h * 0.8));
    }
    p.setPen(pen(cross, sw));
    p.drawLine(QPointF(box.left() + w * 0.14, box.top() + h * 0.7),
               QPointF(box.left() + w * 0.86, box.top() + h * 0.3));
}

void appIcon(QPainter& p, qreal size)
{
    const QRectF r(size * 0.03, size * 0.03, size * 0.94, size * 0.94);
    QLinearGradient g(r.topLeft(), r.bottomRight());
    g.setColorAt(0, kBlue.lighter(108));
    g.setColorAt(1, kDeepBlue);
    p.setPen(Qt::NoPen);
    p.setBrush(g);
    p.drawRoundedRect(r, size * 0.2, size * 0.2);
    tallyMark(p, r, kPaper, kAmber);
}

// ---- writing ------------------------------------------------------------------------------

QImage canvas(int w, int h, const QColor& fill = Qt::transparent)
{
    QImage img(w, h, QImage::Format_ARGB32_Premultiplied);
    img.fill(fill);
    return img;
}

bool save(const QImage& img, const QString& path)
{
    if (img.save(path))
        return true;
    qWarning("cannot write %s", qPrintable(path));
    return false;
}

bool toolbarImage(const QString& dir, const QString& key, const Draw& draw)
{
    bool ok = true;
    for (int factor : {1, 2}) {
        QImage img = canvas(24 * factor, 24 * factor);
        QPainter p(&img);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::TextAntialiasing);
        p.scale(factor, factor);
        draw(p);
        p.end();
        ok &= save(img, dir + u'/' + key + (factor == 1 ? QString() : QStringLiteral("@2x")) + QStringLiteral(".png"));
    }
    return ok;
}

QFont font(const QString& family, int pixels, int weight)
{
    QFont f(family);
    f.setPixelSize(pixels);
    f.setWeight(QFont::Weight(weight));
    f.setHintingPreference(QFont::PreferNoHinting);
    return f;
}

QImage splash()
{
    const int w = 420, h = 260;
    QImage img = canvas(w, h, kDeepBlue);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);

    QLinearGradient bg(0, 0, w, h);
    bg.setColorAt(0, QColor(0x23, 0x6a, 0xb8));
    bg.setColorAt(1, QColor(0x12, 0x33, 0x5c));
    p.fillRect(img.rect(), bg);

    // A large faint tally behind the text.
    p.setOpacity(0.07);
    tallyMark(p, QRectF(268, 14, 190, 190), kPaper, kPaper);
    p.setOpacity(1.0);

    // The icon on a white tile.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 235));
    p.drawRoundedRect(QRectF(34, 58, 92, 92), 20, 20);
    p.save();
    p.translate(40, 64);
    appIcon(p, 80);
    p.restore();

    p.setPen(kPaper);
    p.setFont(font(QStringLiteral("Lato"), 52, QFont::Black));
    p.drawText(QRectF(146, 56, 260, 64), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Tallybid"));
    p.setPen(QColor(0xcf, 0xe3, 0xf7));
    p.setFont(font(QStringLiteral("Lato"), 15, QFont::Medium));
    p.drawText(QRectF(148, 118, 260, 44), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
               QStringLiteral("Your auction items, listings,\npictures and buyers in one place"));

    // Footer band.
    p.setPen(Qt::NoPen);
    p.setBrush(kAmber);
    p.drawRect(QRectF(0, h - 40, w, 3));
    p.setBrush(QColor(0, 0, 0, 60));
    p.drawRect(QRectF(0, h - 37, w, 37));
    p.setPen(QColor(0xe8, 0xf1, 0xfa));
    p.setFont(font(QStringLiteral("Lato"), 12, QFont::Medium));
    p.drawText(QRectF(18, h - 37, w - 36, 37), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Opening your items\u2026"));
    p.end();
    return img;
}

QImage logo()
{
    const int w = 200, h = 150;
    QImage img = canvas(w, h, kPaper);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setPen(QPen(QColor(0xc9, 0xd8, 0xe8), 1.0));
    p.setBrush(QColor(0xf4, 0xf8, 0xfc));
    p.drawRoundedRect(QRectF(3.5, 3.5, w - 7, h - 7), 10, 10);
    p.save();
    p.translate(70, 14);
    appIcon(p, 60);
    p.restore();
    p.setPen(kDeepBlue);
    p.setFont(font(QStringLiteral("Lato"), 30, QFont::Black));
    p.drawText(QRectF(0, 76, w, 38), Qt::AlignCenter, QStringLiteral("Tallybid"));
    p.setPen(kSlate);
    p.setFont(font(QStringLiteral("Lato"), 11, QFont::Medium));
    p.drawText(QRectF(0, 112, w, 20), Qt::AlignCenter, QStringLiteral("Choose a picture with Find"));
    p.end();
    return img;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        qWarning("usage: artwork OUTDIR");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const QString icons = out + QStringLiteral("/icons");
    QDir().mkpath(icons);

    const QList<QPair<QString, Draw>> toolbar = {
        {QStringLiteral("Options"), drawOptions},       {QStringLiteral("Add"), drawAdd},
        {QStringLiteral("Del"), drawDel},               {QStringLiteral("First"), drawFirst},
        {QStringLiteral("Prev"), drawPrev},             {QStringLiteral("Next"), drawNext},
        {QStringLiteral("Last"), drawLast},             {QStringLiteral("ViewAll"), drawViewAll},
        {QStringLiteral("ViewActive"), drawViewActive}, {QStringLiteral("ViewInactive"), drawViewInactive},
        {QStringLiteral("Find"), drawFind},             {QStringLiteral("Upload"), drawUpload},
        {QStringLiteral("AutoMail"), drawAutoMail},     {QStringLiteral("Preview"), drawPreview},
        {QStringLiteral("AddItem"), drawAddItem},       {QStringLiteral("ViewListing"), drawViewListing},
        {QStringLiteral("ViewAllAuc"), drawViewAllAuc}, {QStringLiteral("Exit"), drawExit},
        {QStringLiteral("Help"), drawHelp},
    };
    bool ok = true;
    for (const auto& [key, draw] : toolbar)
        ok &= toolbarImage(icons, key, draw);

    for (const auto& [size, name] : {QPair<int, QString>{64, QStringLiteral("tallybid.png")},
                                     QPair<int, QString>{256, QStringLiteral("tallybid-256.png")}}) {
        QImage img = canvas(size, size);
        QPainter p(&img);
        p.setRenderHint(QPainter::Antialiasing);
        appIcon(p, size);
        p.end();
        ok &= save(img, icons + u'/' + name);
    }
    ok &= save(splash(), out + QStringLiteral("/splash.png"));
    ok &= save(logo(), out + QStringLiteral("/logo.png"));
    return ok ? 0 : 1;
}
EOF

g++ -std=c++20 -fPIC -O1 -o "$WORK/artwork" "$WORK/artwork.cpp" $(pkg-config --cflags --libs Qt6Gui)
QT_QPA_PLATFORM=offscreen "$WORK/artwork" "$WORK/out"

# Toolbar images, application icon and splash go in as drawn; PNGs are stripped of the
# time stamps so a redraw of unchanged art leaves the files unchanged.
mkdir -p "$OUT/icons"
for f in "$WORK"/out/icons/*.png; do
    "$CONVERT" "$f" -define png:exclude-chunks=date,time -strip "PNG32:$OUT/icons/$(basename "$f")"
done
"$CONVERT" "$WORK/out/splash.png" -strip "PNG24:$OUT/splash.png"
# The logo is shown in the picture preview of a new item; it is a GIF.
"$CONVERT" "$WORK/out/logo.png" -strip -dither None -colors 96 "$OUT/logovksm.gif"

echo "artwork written to $OUT"
