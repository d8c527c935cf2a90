// What is told of a drawing to be cut: warnings, a line for each file, and all of it as JSON.
#pragma once

#include <string>
#include <vector>

#include "app/cut.h"
#include "app/output_list.h"

namespace kerno {

// "62 closed paths, 812 arcs, 404 lines, 120 x 14.2 mm, 1234.5 mm to cut"
std::string SummaryOf(const CutDrawing& made);

// "DejaVu Sans Book"; "Inter Regular (Inter.var.ttf, wght=650)" where the face was varied.
std::string NameWithPlaces(const CutFace& face);

// One object on a line of its own.
std::string JsonOf(const CutDrawing& made, const std::vector<WrittenFile>& files);

}  // namespace kerno
