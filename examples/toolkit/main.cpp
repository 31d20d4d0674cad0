// A window of Qt behind the library's plain classes: a menu of serial ports, cards upon one another, boxes, the frame.
// A click brings a card to front; one with the right button, or with the option key (Alt), sends it to back.
// `--screenshot FILE` saves the window as a PNG, says on standard output what Qt shows, and ends.
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "examples/toolkit/qt_canvas.h"
#include "examples/toolkit/qt_key_map.h"
#include "examples/toolkit/qt_pop_up_menu.h"
#include "examples/toolkit/qt_run_loop.h"
#include "examples/toolkit/qt_view.h"
#include "examples/toolkit/qt_window.h"
#include "system/miscellany/drawing.h"
#include "system/miscellany/input.h"
#include "system/miscellany/menus.h"
#include "system/miscellany/views.h"
#include "system/miscellany/windows.h"

using namespace SharedClasses;

namespace {

const std::vector<std::string> kPorts = {"ttyS0", "ttyUSB0", "Bluetooth-Modem", "ttyACM0"};
constexpr std::string_view kStoredPort = "ttyUSB1";  // unplugged since
constexpr platform::Rectangle kStoredFrame = {.x = 5000.0, .y = 3000.0, .width = 640.0, .height = 0.0};
constexpr QSize kPanelSize(184, 116);

class Card : public QLabel {
 public:
  Card(const char* name, const char* colour, QPoint place, Qt::Alignment alignment) : QLabel(name) {
    setObjectName(name);
    setStyleSheet(QString("background: %1; color: white; border: 2px solid white; border-radius: 8px; padding: 4px 8px;"
                          "font-weight: bold")
                      .arg(colour));
    setAlignment(alignment);
    setGeometry(QRect(place, QSize(96, 62)));
  }
};

// Three cards; the middle one is brought to front, the last one sent to back.
class CardsPanel : public QWidget {
 public:
  CardsPanel() {
    setFixedSize(kPanelSize);
    for (Card& card : mCards) {
      mView.addSubview(std::make_shared<toolkit::QtView>(card));
    }
    const auto cards = mView.subviews();
    QZAdditions::bringToFront(mView, cards[1].get());
    QZAdditions::sendToBack(mView, cards[2].get());
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    const QWidget* const card = childAt(event->position().toPoint());
    const auto views = mView.subviews();  // a copy: what follows changes their order
    const auto clicked = std::ranges::find_if(views, [card](const auto& subview) {
      return card != nullptr && static_cast<const toolkit::QtView&>(*subview).widget() == card;
    });
    if (clicked == views.end()) {
      return;
    }
    if (event->button() == Qt::RightButton || Utilities::optionKeyDown()) {
      QZAdditions::sendToBack(mView, clicked->get());
    } else {
      QZAdditions::bringToFront(mView, clicked->get());
    }
  }

 private:
  std::array<Card, 3> mCards{Card("Blue", "#3b6fb6", {0, 0}, Qt::AlignLeft | Qt::AlignTop),
                             Card("Green", "#3c8d5a", {44, 27}, Qt::AlignCenter),
                             Card("Amber", "#c9821b", {88, 54}, Qt::AlignRight | Qt::AlignBottom)};
  toolkit::QtView mView{*this};
};

// A box without x and one with it.
class BoxesPanel : public QWidget {
 public:
  BoxesPanel() { setFixedSize(kPanelSize); }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRect(0, 96, 84, 20), Qt::AlignCenter, "without x");
    painter.drawText(QRect(100, 96, 84, 20), Qt::AlignCenter, "with x");
    painter.setPen(QPen(QColor("#3b6fb6"), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    toolkit::QtCanvas canvas(painter, height());
    Utilities::drawBoxWithX(canvas, {.x = 1.0, .y = 27.0, .width = 82.0, .height = 88.0}, false);
    Utilities::drawBoxWithX(canvas, {.x = 101.0, .y = 27.0, .width = 82.0, .height = 88.0}, true);
  }
};

class Example : public QWidget {
 public:
  Example() {
    setWindowTitle("Toolkit");
    mPorts.setStyleSheet("combobox-popup: 0");  // the list opens below the box in every style
    mMenuPanel.setFixedSize(kPanelSize);
    auto* const ports = new QVBoxLayout(&mMenuPanel);
    ports->setContentsMargins(0, 0, 0, 0);
    ports->addWidget(&mPorts);
    ports->addStretch();
    ports->addWidget(new QLabel("Bluetooth ports are hidden."));

    auto* const panels = new QHBoxLayout;
    panels->setSpacing(32);
    panels->addLayout(titled("PopUpMenu", mMenuPanel));
    panels->addLayout(titled("View", mCards));
    panels->addLayout(titled("Canvas", mBoxes));
    auto* const footer = new QHBoxLayout;
    footer->setSpacing(8);
    footer->addWidget(bold("Window"));
    footer->addWidget(&mFrameLabel);
    footer->addStretch();
    footer->addWidget(bold("RunLoop"));
    footer->addWidget(&mTickLabel);
    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins(12, 10, 12, 10);
    all->addLayout(panels);
    all->addStretch();
    all->addLayout(footer);

    Utilities::makeSerialMenuWithNames(&mMenu, kPorts, kStoredPort);
    mWindow.setFrame(kStoredFrame, false);
    Utilities::ensureWindowFrameIsOK(&mWindow);
    Utilities::ensureWindowIsOnScreen(&mWindow, toolkit::QtWindow::screens());
  }

  // Called by the library's timer.
  void showTick(int tick) {
    const platform::Rectangle frame = mWindow.frame();
    mFrameLabel.setText(QString("%1 × %2 at %3, %4").arg(frame.width).arg(frame.height).arg(frame.x).arg(frame.y));
    mTickLabel.setText(QString("tick %1").arg(tick));
  }

  // The window with its menu open.
  [[nodiscard]] QPixmap picture() {
    mPorts.showPopup();
    QWidget* const list = mPorts.view()->window();
    QPixmap image = grab();
    QPainter(&image).drawPixmap(list->mapToGlobal(QPoint()) - mapToGlobal(QPoint()), list->grab());
    mPorts.hidePopup();
    return image;
  }

  // What Qt shows, asked of Qt.
  void print() {
    for (int i = 0; i < mPorts.count(); ++i) {
      const bool isEnabled = mPorts.model()->flags(mPorts.model()->index(i, 0)).testFlag(Qt::ItemIsEnabled);
      std::printf("port: %s%s%s\n", qPrintable(mPorts.itemText(i)), isEnabled ? "" : ", disabled",
                  i == mPorts.currentIndex() ? ", selected" : "");
    }
    for (const QObject* const card : mCards.children()) {  // the last one is on top
      std::printf("card: %s\n", qPrintable(card->objectName()));
    }
    const QImage boxes = mBoxes.grab().toImage();
    const auto colourAt = [&](int x) { return boxes.pixelColor(QPoint(x, 45) * boxes.devicePixelRatio()); };
    for (const int centre : {42, 142}) {
      std::printf("box: %s\n", colourAt(centre) == colourAt(92) ? "empty" : "crossed");
    }
    std::printf("frame: %d x %d, %d from the left, %d from the top\n", frameGeometry().width(),
                frameGeometry().height(), frameGeometry().x(), frameGeometry().y());
  }

 private:
  static QLabel* bold(const QString& text) {
    auto* const label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
  }

  static QLayout* titled(const QString& title, QWidget& content) {
    auto* const layout = new QVBoxLayout;
    layout->setSpacing(8);
    layout->addWidget(bold(title));
    layout->addWidget(&content);
    layout->addStretch();
    return layout;
  }

  QWidget mMenuPanel;
  QComboBox mPorts;
  CardsPanel mCards;
  BoxesPanel mBoxes;
  QLabel mFrameLabel;
  QLabel mTickLabel;
  toolkit::QtPopUpMenu mMenu{mPorts};
  toolkit::QtWindow mWindow{*this};
};

}  // namespace

int main(int argc, char** argv) {
  // Before Qt looks for a display.
  const bool isPictureWanted = argc == 3 && std::string_view(argv[1]) == "--screenshot";
  if (argc > 1 && !isPictureWanted) {
    qCritical("usage: toolkit [--screenshot FILE]");
    return 2;
  }
  const QString file = isPictureWanted ? QString::fromLocal8Bit(argv[2]) : QString();

  QApplication application(argc, argv);
  const toolkit::QtRunLoop runLoop;
  const toolkit::QtKeyMap keyMap;
  Example example;
  example.show();

  int ticks = 0;
  const auto interval = std::chrono::milliseconds(isPictureWanted ? 10 : 1000);
  const auto timer = platform::RunLoop::current().addTimer(interval, [&](platform::Timer&) {
    if (!example.windowHandle()->isExposed()) {
      return;  // not on the screen yet
    }
    example.showTick(++ticks);
    if (isPictureWanted && ticks == 3) {
      example.print();
      const bool isSaved = example.picture().save(file, "PNG");
      if (!isSaved) {
        qCritical("%s could not be written", qPrintable(file));
      }
      QApplication::exit(isSaved ? 0 : 1);
    }
  });
  const int status = QApplication::exec();
  timer->invalidate();
  return status;
}
