#pragma once

#include <string>
#include <vector>

namespace tarvo::view {

class Control;

/// How the controls of a window stand together: a tree of values that each front walks to show the window.
struct Node {
  enum class Kind {
    kControl,    ///< `control` alone
    kColumn,     ///< `children` from top to bottom
    kRow,        ///< `children` from left to right
    kTable,      ///< rows of cells in aligned columns: `headings` above, each child a `kRow`
    kFrame,      ///< one child in a card with the caption `text`
    kField,      ///< heading `text` before its child
    kScroller,   ///< one child that may be larger than its place
    kSpace,      ///< takes the room that is left
    kHead,       ///< a page's head line: `text` the model, `note` what it is; children: firmware label, message
                 ///< label, clip, then the buttons
    kText,       ///< `text` alone
    kPageList,   ///< the labels that lead to the pages
    kPagePlace,  ///< where the main window shows its page
  };

  Kind kind = Kind::kSpace;
  std::string text;
  std::string note;
  std::vector<std::string> headings;
  Control* control = nullptr;
  std::vector<Node> children;
};

Node Show(const Control& control);
Node Column(std::vector<Node> children);
Node Row(std::vector<Node> children);
Node Table(std::vector<std::string> headings, std::vector<Node> rows);
Node Frame(std::string caption, Node child);
Node Field(std::string heading, Node child);
Node Scroller(Node child);
Node Space();
Node Head(std::string model, std::string note, std::vector<Node> children);
Node Text(std::string text);
Node PageList(std::vector<Node> labels);
Node PagePlace();

/// Every control of the tree, in reading order: the order of Tab.
std::vector<Control*> ReadingOrder(const Node& node);

}  // namespace tarvo::view
