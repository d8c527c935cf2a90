// What is told of a drawing to be cut: warnings, a line for each file, and all of it as JSON.
#pragma once

#include <string>
#include <vector>

#include "app/cut.h"
#include "cli/output_files.h"

namespace kerno {

// "62 closed paths, 812 arcs, 404 lines, 120 x 14.2 mm, 1234.5 mm to cut"
std::string SummaryOf(const CutDrawing& made);

// "DejaVu Sans Book"; "Inter Regular (Inter.var.ttf, wght=650)" where the face was varied.
std::string NameWithPlaces(const CutFace& face);

// One object on a line of its own.
std::string JsonOf(const CutDrawing& made, const std::vector<WrittenFile>& files);

// Tells what the user should know before the files are written; false when that ends the command,
// as `strict` asks for where letters are missing or made up.
[[nodiscard]] bool ReportOnCut(const CutDrawing& made, bool strict);

}  // namespace kerno
