// The installed faces that a list of the user interface offers, filtered by rules that a derived
// class may override. A view shows Entries(), in order.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/font_faces.h"

namespace kerno {

// The view's own handle of the window that a list belongs to; only whether there is one matters
// here. Null: no window.
using WindowHandle = const void*;

class FontFaceList {
 public:
  explicit FontFaceList(WindowHandle window) : window_(window) {}
  virtual ~FontFaceList() = default;
  FontFaceList(const FontFaceList&) = delete;
  FontFaceList& operator=(const FontFaceList&) = delete;

  // Collects the faces again. 1 on success; 0 without a window, and then there are none.
  int Enumerate();

  // The accepted names in the system's order; any sorting is the control's own.
  const std::vector<std::u16string>& faces() const { return faces_; }

  // What a control is filled with: the names or, when there is none, the lines that tell why.
  std::vector<std::u16string> Entries() const;

  // Four lines: two blank ones, that the names could not be had, and whether there was a window. A
  // control that stays empty after filling shows them, too.
  std::vector<std::u16string> DiagnosticLines() const;

 protected:
  // Tests one family against the rules, in the order below, and adds it when none rejects it.
  // Always 1: a rejection does not end the enumeration.
  int OnFamily(const InstalledFace& face);

  // The rules; zero switches a rule off.
  virtual int WantTrueTypeOnly() const { return 0; }      // outline faces of either kind
  virtual int ExcludeVerticalFaces() const { return 0; }  // no "@" in front
  virtual int OnlyVerticalFaces() const { return 0; }     // "@" in front
  virtual int UsePitchFilter() const { return 0; }
  virtual int PitchMask() const { return 0; }  // one of these bits of the pitch and family
  virtual int UseCharSetFilter() const { return 0; }
  virtual int CharSetWanted() const { return 1; }  // exactly this character set

  // Appends an accepted name; non-zero.
  virtual int AddFace(std::u16string_view name);

 private:
  bool IsAccepted(const InstalledFace& face) const;

  WindowHandle window_;
  std::vector<std::u16string> faces_;
};

}  // namespace kerno
