#pragma once

#include <functional>
#include <string>
#include <vector>

#include "view/arrangement.h"
#include "view/control.h"
#include "view/window.h"

namespace tarvo::test {

/// The node and all below it, each before its children.
inline void VisitNodes(const view::Node& node, const std::function<void(const view::Node&)>& visit) {
  visit(node);
  for (const view::Node& child : node.children) VisitNodes(child, visit);
}

/// The texts of every node of that kind.
inline std::vector<std::string> TextsOf(const view::Window& page, view::Node::Kind kind) {
  std::vector<std::string> texts;
  VisitNodes(page.Arrangement(), [&](const view::Node& node) {
    if (node.kind == kind) texts.push_back(node.text);
  });
  return texts;
}

/// Every word that stands on the page and is not a value.
inline std::vector<std::string> WordsOf(const view::Window& page) {
  std::vector<std::string> words;
  VisitNodes(page.Arrangement(), [&](const view::Node& node) {
    words.push_back(node.text);
    words.insert(words.end(), node.headings.begin(), node.headings.end());
    if (const auto* label = dynamic_cast<const view::Label*>(node.control)) words.push_back(label->Caption());
  });
  return words;
}

}  // namespace tarvo::test
