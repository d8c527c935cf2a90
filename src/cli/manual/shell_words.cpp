#include "cli/manual/shell_words.h"

namespace kerno {
namespace {

std::string Quoted(std::string_view text, std::string_view quote, std::string_view backslash) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'') {
      out += quote;
    } else if (c == '\\') {
      out += backslash;
    } else {
      out += c;
    }
  }
  return out + "'";
}

void Visit(const CommandText& command, const std::string& path, const CommandVisit& visit) {
  visit(path, command);
  for (const CommandText& inner : command.inner) {
    Visit(inner, (path.empty() ? "" : path + " ") + inner.name, visit);
  }
}

}  // namespace

std::string Quoted(std::string_view text) {
  return Quoted(text, "'\\''", "\\");
}

std::string FishQuoted(std::string_view text) {
  return Quoted(text, "\\'", "\\\\");
}

std::string KindName(const Values& values) {
  switch (values.kind) {
    case Values::Kind::kFree:
      return {};
    case Values::Kind::kWords:
      return "words";
    case Values::Kind::kFile:
      return "file";
    case Values::Kind::kFolder:
      return "folder";
    case Values::Kind::kOutput:
      return "output";
    case Values::Kind::kFace:
      return "face";
    case Values::Kind::kStyle:
      return "style";
    case Values::Kind::kFeatures:
      return "features";
    case Values::Kind::kAxes:
      return "axes";
    case Values::Kind::kStrokeFont:
      return "strokes";
    case Values::Kind::kSection:
      return "section";
    case Values::Kind::kKey:
      return "key";
    case Values::Kind::kCommand:
      break;
  }
  return "command";
}

std::string JoinedWords(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) out += (out.empty() ? "" : " ") + word;
  return out;
}

void ForEachCommand(const CommandText& program, const CommandVisit& visit) {
  Visit(program, "", visit);
}

}  // namespace kerno
