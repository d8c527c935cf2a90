#include "ui/qt/save_question.h"

#include <QFileDialog>
#include <algorithm>

#include "ui/qt/qt_text.h"

namespace kerno {

std::optional<std::filesystem::path> AskForFile(QWidget* parent, const SaveQuestion& question) {
  QFileDialog dialog(parent, ToQString(question.title), PathToQString(question.folder));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  QStringList filters;
  for (const SaveQuestion::Kind& kind : question.kinds) {
    filters.append(QStringLiteral("%1 (%2)").arg(ToQString(kind.name),
                                                 QStringLiteral("*.") + ToQString(kind.extension)));
  }
  dialog.setNameFilters(filters);
  const auto extension_of = [&](const QString& filter) {
    const qsizetype at = std::max<qsizetype>(filters.indexOf(filter), 0);
    return ToQString(question.kinds[static_cast<size_t>(at)].extension);
  };
  if (!question.kinds.empty()) dialog.setDefaultSuffix(extension_of({}));
  QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
    dialog.setDefaultSuffix(extension_of(filter));
    const QStringList chosen = dialog.selectedFiles();
    if (chosen.isEmpty()) return;
    const QFileInfo file(chosen.front());
    dialog.selectFile(file.completeBaseName() + QLatin1Char('.') + extension_of(filter));
  });
  dialog.selectFile(ToQString(question.name));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return QStringToPath(dialog.selectedFiles().value(0));
}

}  // namespace kerno
