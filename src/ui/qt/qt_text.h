// Text, paths, colours and names between the toolkit and the rest of the program.
#pragma once

#include <QColor>
#include <QKeySequence>
#include <QPainter>
#include <QString>
#include <cmath>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/captions.h"
#include "app/controls.h"
#include "base/text.h"
#include "parts/color.h"

namespace kerno {

inline QString ToQString(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}
// An English text of the window in its language.
inline QString Said(std::u16string_view english) {
  return english.empty() ? QString() : ToQString(Say(english));
}
inline std::u16string FromQString(const QString& text) {
  return text.toStdU16String();
}
inline QString PathToQString(const std::filesystem::path& path) {
  return ToQString(PathText(path));
}
inline std::filesystem::path QStringToPath(const QString& text) {
  return TextPath(FromQString(text));
}
inline QColor ToQColor(Color color) {
  return QColor(Red(color), Green(color), Blue(color));
}
inline Color FromQColor(const QColor& color) {
  return RgbColor(color.red(), color.green(), color.blue());
}

// The keys of a shortcut in the portable notation.
inline QKeySequence ToKeys(const char16_t* portable) {
  return QKeySequence::fromString(ToQString(portable), QKeySequence::PortableText);
}

// The place moved onto a pixel of the device: a picture painted between two would be blurred.
inline QPointF OnPixel(const QPainter& painter, QPointF place) {
  const QTransform to_device = painter.deviceTransform();
  const QPointF pixel = to_device.map(place);
  return to_device.inverted().map(QPointF(std::round(pixel.x()), std::round(pixel.y())));
}

// A control's object name is its number.
inline QString ObjectName(ControlId id) {
  return QString::number(static_cast<int>(id));
}

}  // namespace kerno
