#include "Host/Mail/HtmlCleaning.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <memory>

#include "Host/Mail/StyleCleaning.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::host {
namespace {

constexpr std::array<std::string_view, 40> elements = {
    "a",   "b",     "blockquote", "br", "caption", "code", "dd",    "del",  "div",    "dl",
    "dt",  "em",    "h1",         "h2", "h3",      "h4",   "h5",    "h6",   "hr",     "i",
    "ins", "li",    "ol",         "p",  "pre",     "s",    "small", "span", "strong", "sub",
    "sup", "table", "tbody",      "td", "tfoot",   "th",   "thead", "tr",   "u",      "ul"};
constexpr std::array<std::string_view, 2> emptyElements = {"br", "hr"};

/// What is in them is no text for the reader.
constexpr std::array<std::string_view, 20> droppedWhole = {
    "applet",  "audio",    "canvas",   "embed",    "frameset", "iframe",    "math",
    "noembed", "noframes", "noscript", "object",   "option",   "plaintext", "script",
    "select",  "svg",      "template", "textarea", "title",    "video"};

constexpr std::array<std::string_view, 3> schemes = {"http://", "https://", "mailto:"};

template <size_t Count>
bool contains(const std::array<std::string_view, Count>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

std::string_view textOf(const xmlChar* text) {
  return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

struct FreeContext {
  void operator()(htmlParserCtxt* context) const { htmlFreeParserCtxt(context); }
};
struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeText {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

/// Null when the parser could not go to the end.
Document parsed(const std::string& html) {
  const std::unique_ptr<htmlParserCtxt, FreeContext> context(htmlNewParserCtxt());
  if (!context) return nullptr;
  constexpr int options =
      HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET | HTML_PARSE_NODEFDTD;
  Document document(htmlCtxtReadMemory(context.get(), html.data(), static_cast<int>(html.size()), nullptr,
                                       "UTF-8", options));
  return context->lastError.level == XML_ERR_FATAL ? nullptr : std::move(document);
}

/// Writes what is allowed of a tree. The parser bounds how deep that is.
class Writer {
 public:
  std::string text;

  void writeChildren(const xmlNode& parent) {
    for (const xmlNode* child = parent.children; child; child = child->next) write(*child);
  }

 private:
  void write(const xmlNode& node) {
    if (node.type == XML_TEXT_NODE) return escape(textOf(node.content));
    if (node.type == XML_ELEMENT_NODE) writeElement(node, textOf(node.name));
  }

  void writeElement(const xmlNode& node, std::string_view name) {
    if (name == "style") return writeStyle(node);
    if (contains(droppedWhole, name)) return;
    if (!contains(elements, name)) return writeChildren(node);
    text.append("<").append(name);
    writeAttributes(node, name);
    text += '>';
    if (contains(emptyElements, name)) return;
    writeChildren(node);
    text.append("</").append(name).append(">");
  }

  void writeStyle(const xmlNode& node) {
    const std::unique_ptr<xmlChar, FreeText> content(xmlNodeGetContent(&node));
    const std::string sheet = cleanedStyleSheet(textOf(content.get()));
    if (!sheet.empty()) text.append("<style>").append(sheet).append("</style>");
  }

  void writeAttributes(const xmlNode& node, std::string_view element) {
    for (const xmlAttr* attribute = node.properties; attribute; attribute = attribute->next) {
      const std::unique_ptr<xmlChar, FreeText> value(xmlNodeListGetString(node.doc, attribute->children, 1));
      writeAttribute(element, textOf(attribute->name), textOf(value.get()));
    }
  }

  void writeAttribute(std::string_view element, std::string_view name, std::string_view value) {
    if (name == "style") return writeValue(name, cleanedDeclarations(value));
    if (name == "dir" && (value == "ltr" || value == "rtl" || value == "auto"))
      return writeValue(name, value);
    if (element == "a" && name == "href" && isLink(value)) return writeValue(name, value);
    const bool spans = name == "colspan" || name == "rowspan";
    if (spans && (element == "td" || element == "th") && isSmallNumber(value)) writeValue(name, value);
  }

  void writeValue(std::string_view name, std::string_view value) {
    if (value.empty()) return;
    text.append(" ").append(name).append("=\"");
    escape(value);
    text += '"';
  }

  static bool isLink(std::string_view value) {
    const bool isPlain =
        std::ranges::all_of(value, [](char c) { return static_cast<unsigned char>(c) > ' '; });
    return isPlain && std::ranges::any_of(schemes, [&](auto scheme) { return value.starts_with(scheme); });
  }

  static bool isSmallNumber(std::string_view value) {
    return !value.empty() && value.size() <= 2 &&
           std::ranges::all_of(value, [](char c) { return c >= '0' && c <= '9'; });
  }

  void escape(std::string_view plain) {
    constexpr std::string_view hardSpace = "\xc2\xa0";
    for (; !plain.empty(); plain.remove_prefix(1)) {
      if (plain.starts_with(hardSpace)) {
        text += "&nbsp;";
        plain.remove_prefix(1);
      } else {
        escape(plain.front());
      }
    }
  }

  void escape(char c) {
    if (c == '&')
      text += "&amp;";
    else if (c == '<')
      text += "&lt;";
    else if (c == '>')
      text += "&gt;";
    else if (c == '"')
      text += "&quot;";
    else
      text += c;
  }
};

}  // namespace

std::optional<std::string> cleanedHtml(std::string_view html) {
  if (html.size() > longestHtml) return std::nullopt;
  // Text that stands in no body would be given a paragraph.
  std::string readable = "<html><body>" + NSStringWithReplacements(html);
  std::ranges::replace(readable, '\0', ' ');
  const Document document = parsed(readable);
  if (!document) return std::nullopt;
  Writer writer;
  if (const xmlNode* const root = xmlDocGetRootElement(document.get())) {
    if (root->parent) writer.writeChildren(*root);
  }
  return std::move(writer.text);
}

}  // namespace quaverly::host
