// What options of the command line choose from, but for those of a cut (app/cut_choices.h).
#pragma once

#include "app/choice.h"
#include "app/job.h"
#include "export/formats.h"

namespace kerno {

// Texts for the system's device context

inline constexpr auto kLineEndChoices =
    MakeChoices<bool>("--line-ends", {{"crlf", true}, {"keep", false}});
inline constexpr auto kPitchChoices = MakeChoices<VerticalPitch>(
    "--pitch", {{"classic", VerticalPitch::kClassic}, {"cell", VerticalPitch::kCell}});
inline constexpr auto kElementChoices =
    MakeChoices<ContourElements>("--elements", {{"lines", ContourElements::kLines},
                                                {"faces", ContourElements::kFaces},
                                                {"both", ContourElements::kBoth}});

// Files of the parts model

inline constexpr auto kDxfLayerChoices = MakeChoices<DxfLayerRule>(
    "--dxf-layers", {{"name", DxfLayerRule::kName}, {"colour", DxfLayerRule::kColour}});
inline constexpr auto kAciChoices =
    MakeChoices<AciRule>("--aci", {{"classic", AciRule::kClassic}, {"nearest", AciRule::kNearest}});
inline constexpr auto kUnitsChoices = MakeChoices<bool>("--units", {{"none", false}, {"mm", true}});

// Series

inline constexpr auto kSeparatorChoices =
    MakeChoices<char>("--separator", {{"comma", ','},
                                      {",", ',', Spelling::kOther},
                                      {"semicolon", ';'},
                                      {";", ';', Spelling::kOther},
                                      {"tab", '\t'},
                                      {"\\t", '\t', Spelling::kOther},
                                      {"\t", '\t', Spelling::kOther}});

}  // namespace kerno
