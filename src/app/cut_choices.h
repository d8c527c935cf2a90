// What the options of a cut choose from.
#pragma once

#include "app/choice.h"
#include "app/cut.h"
#include "export/drawing_style.h"

namespace kerno {

inline constexpr auto kDirectionChoices =
    MakeChoices<ParagraphDirection>("--direction", {{"auto", ParagraphDirection::kAuto},
                                                    {"ltr", ParagraphDirection::kLeftToRight},
                                                    {"rtl", ParagraphDirection::kRightToLeft}});

// Sizes and places

inline constexpr auto kUnitChoices =
    MakeChoices<LengthUnit>("--unit", {{"mm", LengthUnit::kMillimetre}, {"in", LengthUnit::kInch}});
inline constexpr auto kAlignChoices =
    MakeChoices<Alignment>("--align", {{"left", Alignment::kLeft},
                                       {"centre", Alignment::kCentre},
                                       {"center", Alignment::kCentre, Spelling::kOther},
                                       {"right", Alignment::kRight}});
inline constexpr auto kAnchorChoices = MakeChoices<Anchor>("--anchor", {{"bottom-left", {0, 0}},
                                                                        {"bottom-centre", {1, 0}},
                                                                        {"bottom-right", {2, 0}},
                                                                        {"middle-left", {0, 1}},
                                                                        {"middle-centre", {1, 1}},
                                                                        {"middle-right", {2, 1}},
                                                                        {"top-left", {0, 2}},
                                                                        {"top-centre", {1, 2}},
                                                                        {"top-right", {2, 2}}});

// Paths

inline constexpr auto kCurveChoices = MakeChoices<CurveForm>(
    "--curves",
    {{"arcs", CurveForm::kArcs}, {"lines", CurveForm::kLines}, {"curves", CurveForm::kCurves}});
inline constexpr auto kWeldChoices = MakeChoices<WeldScope>(
    "--weld",
    {{"text", WeldScope::kText}, {"glyph", WeldScope::kGlyph}, {"off", WeldScope::kNone}});
inline constexpr auto kOrderChoices = MakeChoices<CutOrder>(
    "--order", {{"inside-first", CutOrder::kInsideFirst}, {"text", CutOrder::kText}});

// Files

inline constexpr auto kDxfChoices =
    MakeChoices<DxfVersion>("--dxf", {{"r2000", DxfVersion::kR2000}, {"r12", DxfVersion::kR12}});
inline constexpr auto kLayersChoices =
    MakeChoices<LayerRule>("--layers", {{"one", LayerRule::kOne},
                                        {"glyph", LayerRule::kGlyph},
                                        {"line", LayerRule::kLine},
                                        {"depth", LayerRule::kDepth}});
inline constexpr auto kSvgStyleChoices =
    MakeChoices<SvgLook>("--svg-style", {{"cut", SvgLook::kCut}, {"fill", SvgLook::kFill}});

}  // namespace kerno
