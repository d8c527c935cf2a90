#include "ui/qt/printing.h"

#include <QMessageBox>
#include <QPainter>
#include <QPainterPath>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>

#include "app/captions.h"
#include "drawing/segment.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr double kStray = 0.005;   // millimetres, of curves that stand for arcs
constexpr double kThinnest = 0.1;  // millimetres, of a line

// Points of a drawing on paper.
struct OnPaper {
  Box2 picture;
  double unit;  // millimetres

  QPointF operator()(const P2& at, const P2& moved) const {
    return {(at.x + moved.x - picture.min.x) * unit, (picture.max.y - at.y - moved.y) * unit};
  }
};

void AddPath(const Path& path, const P2& moved, const OnPaper& paper, QPainterPath* on_paper) {
  on_paper->moveTo(paper(path.start, moved));
  for (const Piece& piece : PiecesOf(path)) {
    std::vector<Segment> parts;
    if (piece.segment.kind == SegmentKind::kArc) {
      AppendCubics(piece, kStray / paper.unit, &parts);
    } else if (piece.segment.kind == SegmentKind::kLine) {
      parts = {piece.segment};
    } else {
      parts = {AsCubic(piece)};
    }
    for (const Segment& part : parts) {
      if (part.kind == SegmentKind::kLine) {
        on_paper->lineTo(paper(part.end, moved));
      } else {
        on_paper->cubicTo(paper(part.first, moved), paper(part.second, moved),
                          paper(part.end, moved));
      }
    }
  }
  if (path.closed) on_paper->closeSubpath();
}

bool AskWhetherToCutOff(QWidget* parent, const QSizeF& drawing, const QSizeF& page) {
  const auto size = [](const QSizeF& s) {
    return FromQString(
        QStringLiteral("%1 × %2 mm").arg(s.width(), 0, 'f', 1).arg(s.height(), 0, 'f', 1));
  };
  QMessageBox box(
      QMessageBox::Question, parent->window()->windowTitle(),
      ToQString(Say(u"The drawing is {}, the page has room for {}. What does not fit is "
                    u"cut off.",
                    {size(drawing), size(page)})),
      QMessageBox::Cancel, parent);
  const QPushButton* print = box.addButton(Said(u"Print"), QMessageBox::AcceptRole);
  box.exec();
  return box.clickedButton() == print;
}

bool Paint(const QPainterPath& on_paper, QPrinter* printer) {
  QPainter painter;
  if (!painter.begin(printer)) return false;
  painter.setRenderHint(QPainter::Antialiasing);
  const double dots = printer->resolution() / kMillimetresPerInch;
  painter.scale(dots, dots);
  painter.setPen(QPen(Qt::black, kThinnest));
  painter.drawPath(on_paper);
  return painter.end();
}

// A job that reached no printer ends like one that did. A file has no printer.
bool IsGone(const QPrinter& printer) {
  return printer.outputFileName().isEmpty() &&
         QPrinterInfo::printerInfo(printer.printerName()).isNull();
}

}  // namespace

QPainterPath PathForPaper(const Drawing& drawing) {
  const double unit = drawing.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  const OnPaper paper = {PictureOf(drawing), unit};
  QPainterPath on_paper;
  for (const PlacedShape& placed : drawing.placed) {
    for (const ShapePath& path : drawing.shapes[placed.shape]) {
      AddPath(path.path, placed.at, paper, &on_paper);
    }
  }
  return on_paper;
}

void PrintDrawing(QWidget* parent, const Drawing& drawing, std::u16string_view title) {
  const QPainterPath on_paper = PathForPaper(drawing);
  const QSizeF size = on_paper.boundingRect().size();
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(ToQString(title));
  if (size.width() > size.height()) printer.setPageOrientation(QPageLayout::Landscape);
  QPrintDialog dialog(&printer, parent);
  if (dialog.exec() != QDialog::Accepted) return;
  const QRectF page = printer.pageRect(QPrinter::Millimeter);
  const bool fits = size.width() <= page.width() && size.height() <= page.height();
  if (!fits && !AskWhetherToCutOff(parent, size, page.size())) return;
  if (!Paint(on_paper, &printer) || IsGone(printer)) {
    QMessageBox::warning(parent, parent->window()->windowTitle(),
                         Said(u"The printer cannot be used."));
  }
}

}  // namespace kerno
