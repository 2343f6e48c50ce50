#include "view/arrangement.h"

#include <utility>

#include "view/control.h"

namespace tarvo::view {

namespace {

Node Make(Node::Kind kind, std::string text, std::vector<Node> children) {
  Node node;
  node.kind = kind;
  node.text = std::move(text);
  node.children = std::move(children);
  return node;
}

Node MakeAround(Node::Kind kind, std::string text, Node child) {
  Node node;
  node.kind = kind;
  node.text = std::move(text);
  node.children.push_back(std::move(child));
  return node;
}

void Collect(const Node& node, std::vector<Control*>& found) {
  if (node.control != nullptr) found.push_back(node.control);
  for (const Node& child : node.children) Collect(child, found);
}

}  // namespace

Node Show(const Control& control) {
  Node node;
  node.kind = Node::Kind::kControl;
  // An arrangement is made by a window of its own controls; fronts hand gestures in through it.
  node.control = const_cast<Control*>(&control);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  return node;
}

Node Column(std::vector<Node> children) {
  return Make(Node::Kind::kColumn, {}, std::move(children));
}

Node Row(std::vector<Node> children) {
  return Make(Node::Kind::kRow, {}, std::move(children));
}

Node Table(std::vector<std::string> headings, std::vector<Node> rows) {
  Node node = Make(Node::Kind::kTable, {}, std::move(rows));
  node.headings = std::move(headings);
  return node;
}

Node Frame(std::string caption, Node child) {
  return MakeAround(Node::Kind::kFrame, std::move(caption), std::move(child));
}

Node Field(std::string heading, Node child) {
  return MakeAround(Node::Kind::kField, std::move(heading), std::move(child));
}

Node Scroller(Node child) {
  return MakeAround(Node::Kind::kScroller, {}, std::move(child));
}

Node Space() {
  return {};
}

Node Head(std::string model, std::string note, std::vector<Node> children) {
  Node node = Make(Node::Kind::kHead, std::move(model), std::move(children));
  node.note = std::move(note);
  return node;
}

Node Text(std::string text) {
  return Make(Node::Kind::kText, std::move(text), {});
}

Node PageList(std::vector<Node> labels) {
  return Make(Node::Kind::kPageList, {}, std::move(labels));
}

Node PagePlace() {
  return Make(Node::Kind::kPagePlace, {}, {});
}

std::vector<Control*> ReadingOrder(const Node& node) {
  std::vector<Control*> found;
  Collect(node, found);
  return found;
}

}  // namespace tarvo::view
