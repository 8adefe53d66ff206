#include "tools/reference/pages.h"

#include <cstdio>
#include <vector>

#include "tools/reference/html.h"
#include "tools/reference/signature.h"

namespace qorvel::reference {
namespace {

std::string Hex(uint32_t value, int digits = 0) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*x", digits, value);
  return text;
}

std::string Code(std::string_view text) { return "<code>" + Escape(text) + "</code>"; }

// A text of the library's own, quoted exactly: its runs of blanks are kept.
std::string Quoted(std::string_view text) {
  return "<span class=\"q\">&ldquo;" + Escape(text) + "&rdquo;</span>";
}

std::string Nav(const TypeLibrary& library) {
  std::string nav = "<nav><a href=\"index.html\"><b>" + Escape(library.name) + "</b></a>";
  for (const ClassInfo& cls : library.classes) {
    nav += "<a href=\"" + Escape(cls.name) + ".html\">" + Escape(cls.name) + "</a>";
  }
  return nav + "</nav>\n";
}

// OLEMISC_ names, lowest bit first, as a container's documentation spells them.
std::vector<std::string> MiscFlags(uint32_t status) {
  static const char* const kNames[] = {"RECOMPOSEONRESIZE",
                                       "ONLYICONIC",
                                       "INSERTNOTREPLACE",
                                       "STATIC",
                                       "CANTLINKINSIDE",
                                       "CANLINKBYOLE1",
                                       "ISLINKOBJECT",
                                       "INSIDEOUT",
                                       "ACTIVATEWHENVISIBLE",
                                       "RENDERINGISDEVICEINDEPENDENT",
                                       "INVISIBLEATRUNTIME",
                                       "ALWAYSRUN",
                                       "ACTSLIKEBUTTON",
                                       "ACTSLIKELABEL",
                                       "NOUIACTIVATE",
                                       "ALIGNABLE",
                                       "SIMPLEFRAME",
                                       "SETCLIENTSITEFIRST",
                                       "IMEMODE",
                                       "IGNOREACTIVATEWHENVISIBLE",
                                       "WANTSTOMENUMERGE",
                                       "SUPPORTSMULTILEVELUNDO"};
  std::vector<std::string> names;
  for (size_t bit = 0; bit < 32; ++bit) {
    if (!(status & (1u << bit))) continue;
    names.push_back(bit < std::size(kNames) ? std::string("OLEMISC_") + kNames[bit]
                                            : Hex(1u << bit));
  }
  return names;
}

const EnumInfo* EnumHolding(const TypeLibrary& library, std::string_view member) {
  for (const EnumInfo& e : library.enums) {
    for (const auto& [name, value] : e.members) {
      if (name == member) return &e;
    }
  }
  return nullptr;
}

std::string Anchor(const MemberInfo& member, bool event) {
  if (event) return member.name + "-event";
  if (member.kind == MemberKind::kMethod) return member.name;
  return member.name + "-" + KindName(member.kind);
}

// Where a `code` span of a note points. `page` is the class whose page it is, or null on the
// index; a member of that class, any class, "Class.Member", an enumeration and an enumeration's
// member get links, anything else stays plain code.
std::string LinkFor(const TypeLibrary& library, const ClassInfo* page, std::string_view code) {
  auto member_anchor = [&](const ClassInfo& cls, std::string_view name) -> std::string {
    for (const std::string& iface_name : {cls.default_interface, cls.event_interface}) {
      const InterfaceInfo* iface = library.FindInterface(iface_name);
      if (!iface || iface_name.empty()) continue;
      for (const MemberInfo& m : iface->members) {
        if (m.name == name) return "#" + Anchor(m, iface->events);
      }
    }
    return "";
  };
  const std::string index = page ? "index.html" : "";
  if (page) {
    if (std::string anchor = member_anchor(*page, code); !anchor.empty()) return anchor;
  }
  for (const ClassInfo& cls : library.classes) {
    if (code == cls.name) return page == &cls ? "" : cls.name + ".html";
    if (code.size() > cls.name.size() + 1 && code.substr(0, cls.name.size()) == cls.name &&
        code[cls.name.size()] == '.') {
      std::string anchor = member_anchor(cls, code.substr(cls.name.size() + 1));
      if (!anchor.empty()) return (page == &cls ? "" : cls.name + ".html") + anchor;
    }
  }
  for (const EnumInfo& e : library.enums) {
    if (code == e.name) return index + "#enum-" + e.name;
  }
  if (const EnumInfo* e = EnumHolding(library, code)) return index + "#enum-" + e->name;
  return "";
}

SignatureStyle HtmlStyle(bool on_index) {
  return {[](std::string_view text) { return Escape(text); },
          [on_index](std::string_view vb_type, std::string_view enum_name) {
            if (enum_name.empty()) return Escape(vb_type);
            return "<a href=\"" + std::string(on_index ? "" : "index.html") + "#enum-" +
                   Escape(enum_name) + "\">" + Escape(vb_type) + "</a>";
          }};
}

std::string KindLabel(const InterfaceInfo& iface, const MemberInfo& m) {
  if (iface.events) return "event";
  if (m.kind == MemberKind::kMethod) return m.has_retval() ? "function" : "method";
  // A property's label says when it can only be read or only be written.
  const MemberKind other = m.kind == MemberKind::kGet ? MemberKind::kPut : MemberKind::kGet;
  std::string label = std::string("property ") + KindName(m.kind);
  if (!FindMember(iface, m.name, other)) {
    label += m.kind == MemberKind::kGet ? " (read-only)" : " (write-only)";
  }
  return label;
}

std::string ResultHtml(const MemberInfo& m) {
  if (!m.has_retval()) return "&mdash;";
  return HtmlStyle(false).type(VbTypeName(m.result, m.result_enum), m.result_enum);
}

std::string SummaryTable(const InterfaceInfo& iface) {
  std::string out =
      "<table>\n<tr><th class=\"num\">Slot</th><th>Member</th><th>Kind</th>"
      "<th>DISPID</th><th>Returns</th></tr>\n";
  int slot = 0;
  for (const MemberInfo& m : iface.members) {
    out += "<tr><td class=\"num\">" + std::to_string(++slot) + "</td><td><a href=\"#" +
           Escape(Anchor(m, iface.events)) + "\">" + Escape(m.name) + "</a></td><td>" +
           Escape(KindLabel(iface, m)) + (m.browsable ? "" : ", hidden") + "</td><td><code>" +
           Hex(m.dispid, 8) + "</code></td><td>" + ResultHtml(m) + "</td></tr>\n";
  }
  return out + "</table>\n";
}

std::string MemberSection(const TypeLibrary& library, const ClassInfo& cls,
                          const InterfaceInfo& iface, const MemberInfo& m, int slot,
                          const NoteBook& notes) {
  std::string out = "<section class=\"member\" id=\"" + Escape(Anchor(m, iface.events)) + "\">\n";
  out +=
      "<h3>" + Escape(m.name) + "<span class=\"kind\">" + Escape(KindLabel(iface, m)) + "</span>";
  if (!m.browsable) out += "<span class=\"kind hidden\">hidden from browsers</span>";
  out += "</h3>\n<pre class=\"sig\">" + VbSignature(m, iface.events, HtmlStyle(false)) + "</pre>\n";
  out += "<dl>\n<dt>DISPID</dt><dd><code>" + Hex(m.dispid, 8) + "</code></dd>\n";
  out += "<dt>Slot</dt><dd>" + std::to_string(slot) + " of " +
         std::to_string(iface.members.size()) + " in " + Code(iface.name) + "</dd>\n";
  if (m.has_retval()) out += "<dt>Returns</dt><dd>" + ResultHtml(m) + "</dd>\n";
  if (!m.help.empty()) out += "<dt>Help string</dt><dd>" + Quoted(m.help) + "</dd>\n";
  out += "</dl>\n";
  out += RenderNote(notes.ForMember(cls, m),
                    [&](std::string_view code) { return LinkFor(library, &cls, code); });
  return out + "</section>\n";
}

std::string InterfaceText(const InterfaceInfo* iface) {
  if (!iface) return "none";
  return Code(iface->name) + " " + Escape(ToString(iface->guid));
}

}  // namespace

std::string IndexPage(const TypeLibrary& library, const NoteBook& notes) {
  auto link = [&](std::string_view code) { return LinkFor(library, nullptr, code); };
  std::string body = Nav(library);
  body += "<h1>" + Escape(library.name) + " reference</h1>\n";
  body += RenderNote(notes.ForOwner(library.name), link);

  body += "<h2>The library</h2>\n<table class=\"facts\">\n";
  auto fact = [&](std::string_view name, const std::string& value_html) {
    body += "<tr><th>" + Escape(name) + "</th><td>" + value_html + "</td></tr>\n";
  };
  fact("Name", Code(library.name));
  fact("Library id", Escape(ToString(library.guid)));
  fact("Version",
       std::to_string(library.major_version) + "." + std::to_string(library.minor_version));
  fact("Help string", Quoted(library.help_string));
  fact("Help file", Code(library.help_file));
  fact("Locale", Code(Hex(library.locale)) + " (US English)");
  fact("Kind", library.control_library ? "control library" : "type library");
  size_t events = 0;
  for (const InterfaceInfo& iface : library.interfaces) events += iface.events ? 1 : 0;
  fact("Types", std::to_string(library.type_count()) + ": " +
                    std::to_string(library.classes.size()) + " classes, " +
                    std::to_string(library.interfaces.size() - events) + " default interfaces, " +
                    std::to_string(events) + " event interfaces, " +
                    std::to_string(library.enums.size()) + " enumerations");
  for (const auto& [name, value] : library.version_block) {
    fact(name, value.empty() ? "(present, empty)" : Quoted(value));
  }
  body += "</table>\n";

  body +=
      "<h2>Classes</h2>\n<table>\n<tr><th>Class</th><th>Kind</th><th>Programmatic name</th>"
      "<th>Interfaces</th><th>Misc status</th><th>Toolbox bitmap</th></tr>\n";
  for (const ClassInfo& cls : library.classes) {
    std::string interfaces = Code(cls.default_interface);
    if (!cls.event_interface.empty()) interfaces += ", events " + Code(cls.event_interface);
    body += "<tr><td><a href=\"" + Escape(cls.name) + ".html\">" + Escape(cls.name) +
            "</a></td><td>" + (cls.control ? "control" : "plain class") + "</td><td>" +
            Code(library.name + "." + cls.name) + "</td><td>" + interfaces + "</td><td>" +
            Code(Hex(cls.misc_status)) + "</td><td>" +
            (cls.toolbox_bitmap ? std::to_string(cls.toolbox_bitmap) : "none") + "</td></tr>\n";
  }
  body += "</table>\n";

  body += "<h2>Enumerations</h2>\n";
  for (const EnumInfo& e : library.enums) {
    body += "<section class=\"member\" id=\"enum-" + Escape(e.name) + "\">\n<h3>" + Escape(e.name) +
            "<span class=\"kind\">enumeration, 32-bit</span></h3>\n";
    body += RenderNote(notes.ForOwner(e.name), link);
    body += "<table>\n<tr><th>Member</th><th class=\"num\">Value</th><th>Member id</th></tr>\n";
    for (size_t i = 0; i < e.members.size(); ++i) {
      body += "<tr><td>" + Code(e.members[i].first) + "</td><td class=\"num\">" +
              std::to_string(e.members[i].second) + "</td><td><code>" +
              Hex(uint32_t(EnumMemberId(i)), 8) + "</code></td></tr>\n";
    }
    body += "</table>\n</section>\n";
  }
  return Page(library.name + " reference", body);
}

std::string ClassPage(const TypeLibrary& library, const ClassInfo& cls, const NoteBook& notes) {
  const InterfaceInfo& iface = *library.FindInterface(cls.default_interface);
  const InterfaceInfo* events =
      cls.event_interface.empty() ? nullptr : library.FindInterface(cls.event_interface);
  std::string body = Nav(library);
  body += "<h1>" + Escape(cls.name) + "<span class=\"kind\">" +
          (cls.control ? "control" : "plain class") + "</span></h1>\n";
  body += RenderNote(notes.ForOwner(cls.name),
                     [&](std::string_view code) { return LinkFor(library, &cls, code); });

  body += "<table class=\"facts\">\n";
  auto fact = [&](std::string_view name, const std::string& value_html) {
    body += "<tr><th>" + Escape(name) + "</th><td>" + value_html + "</td></tr>\n";
  };
  fact("Programmatic name", Code(library.name + "." + cls.name));
  fact("Class id", Escape(ToString(cls.guid)));
  fact("Default interface", InterfaceText(&iface) + " (dual)");
  fact("Event interface", InterfaceText(events));
  std::string misc = Code(Hex(cls.misc_status)) + "<div class=\"flags\">";
  const std::vector<std::string> flags = MiscFlags(cls.misc_status);
  for (size_t i = 0; i < flags.size(); ++i) misc += (i ? ", " : "") + Escape(flags[i]);
  misc += "</div>";
  fact("Misc status", misc);
  fact("Toolbox bitmap",
       cls.toolbox_bitmap ? "resource " + std::to_string(cls.toolbox_bitmap) + ", 16 by 15 pixels"
                          : "none");
  body += "</table>\n";

  body += "<h2>Members of " + Code(iface.name) + "</h2>\n" + SummaryTable(iface);
  body += "<h2>Events</h2>\n";
  if (!events) {
    body += "<p>A plain class has no event interface.</p>\n";
  } else if (events->members.empty()) {
    body += "<p>" + Code(events->name) + " declares no events.</p>\n";
  } else {
    body += SummaryTable(*events);
  }

  body += "<h2>Details</h2>\n";
  int slot = 0;
  for (const MemberInfo& m : iface.members) {
    body += MemberSection(library, cls, iface, m, ++slot, notes);
  }
  if (events) {
    slot = 0;
    for (const MemberInfo& m : events->members) {
      body += MemberSection(library, cls, *events, m, ++slot, notes);
    }
  }
  return Page(cls.name + " \xE2\x80\x94 " + library.name + " reference", body);
}

}  // namespace qorvel::reference
