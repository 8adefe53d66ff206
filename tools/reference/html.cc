#include "tools/reference/html.h"

namespace qorvel::reference {
namespace {

constexpr std::string_view kStyle = R"(
body { font: 15px/1.5 "DejaVu Sans", "Segoe UI", Helvetica, Arial, sans-serif; color: #1e2430;
       background: #fff; max-width: 58rem; margin: 0 auto; padding: 1rem 2rem 4rem; }
nav { font-size: 13px; border-bottom: 1px solid #d7dce4; padding-bottom: .5rem; }
nav a { margin-right: .6rem; }
a { color: #1f5fa8; text-decoration: none; }
a:hover { text-decoration: underline; }
h1 { font-size: 1.8rem; margin: 1.2rem 0 .4rem; }
h2 { font-size: 1.3rem; margin: 2rem 0 .6rem; border-bottom: 1px solid #d7dce4; }
h3 { font-size: 1.1rem; margin: 0 0 .3rem; }
code, pre { font-family: "DejaVu Sans Mono", Consolas, monospace; font-size: 13px; }
code { background: #f1f3f6; padding: 0 .2rem; border-radius: 3px; }
pre.sig { background: #f6f8fa; border: 1px solid #dfe3e8; border-radius: 4px;
          padding: .5rem .7rem; margin: .3rem 0 .5rem; overflow-x: auto; }
.kind { font-size: .8rem; font-weight: normal; color: #55606e; background: #eef1f5;
        border-radius: 3px; padding: .05rem .4rem; margin-left: .4rem; vertical-align: middle; }
.hidden { color: #8a4b08; background: #fbf0e0; }
table { border-collapse: collapse; margin: .4rem 0 1rem; }
th, td { text-align: left; vertical-align: top; padding: .25rem .7rem .25rem 0;
         border-bottom: 1px solid #eceff3; }
th { font-size: 13px; color: #55606e; font-weight: 600; }
td.num, th.num { text-align: right; padding-right: 1.2rem; }
table.facts th { width: 11rem; }
section.member { border-top: 1px solid #e3e7ed; padding: .9rem 0 .3rem; }
dl { display: grid; grid-template-columns: 7.5rem 1fr; gap: .1rem .8rem; margin: .3rem 0 .6rem;
     font-size: 14px; }
dt { color: #55606e; }
dd { margin: 0; }
p, ul { margin: .4rem 0; }
.flags { font-size: 12px; color: #55606e; }
.q { white-space: pre-wrap; }
)";

// The span between backticks, linked where the linker knows it.
std::string Inline(std::string_view text, const Linker& link) {
  std::string out;
  bool code = false;
  size_t start = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != '`') continue;
    std::string_view piece = text.substr(start, i - start);
    if (!code) {
      out += Escape(piece);
    } else {
      std::string target = link(piece);
      std::string span = "<code>" + Escape(piece) + "</code>";
      out += target.empty() ? span : "<a href=\"" + Escape(target) + "\">" + span + "</a>";
    }
    code = !code;
    start = i + 1;
  }
  return out;
}

}  // namespace

std::string Escape(std::string_view text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string Page(std::string_view title, std::string_view body) {
  std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  page += "<title>" + Escape(title) + "</title>\n<style>" + std::string(kStyle) + "</style>\n";
  page += "</head>\n<body>\n";
  page += body;
  page += "</body>\n</html>\n";
  return page;
}

std::string RenderNote(const Note& note, const Linker& link) {
  std::string out;
  bool in_list = false;
  for (const NoteBlock& block : note.blocks) {
    if (block.item && !in_list) out += "<ul>\n";
    if (!block.item && in_list) out += "</ul>\n";
    in_list = block.item;
    out += block.item ? "<li>" : "<p>";
    out += Inline(block.text, link);
    out += block.item ? "</li>\n" : "</p>\n";
  }
  if (in_list) out += "</ul>\n";
  return out;
}

}  // namespace qorvel::reference
