#include "druckwerk/expression/expression.h"

#include "druckwerk/expression/aggregates.h"

namespace kvtdruck::druckwerk {

double Expression::number(NodeNumber number_, const Scene& scene) const {
    const Node& node = nodes_[number_];
    const auto operand = [&](std::size_t i) { return number(node.operands[i], scene); };
    switch (node.kind) {
    case Node::Kind::Constant:
        return node.constant;
    case Node::Kind::Value: {
        const Number& value = scene.definitions.number(node.slot, scene.moment);
        return value.isNumber() ? value.value : 0;
    }
    case Node::Kind::Total:
        return scene.totals.value(node.slot);
    case Node::Kind::Page:
        return scene.page;
    case Node::Kind::Line:
        return static_cast<double>(scene.line);
    case Node::Kind::PageLine:
        return static_cast<double>(scene.pageLine);
    case Node::Kind::IsEmpty:
        return trimmed(scene.definitions.value(node.slot, scene.moment).text).empty() ? 1 : 0;
    case Node::Kind::SameText:
        return sameText(node, scene) ? 1 : 0;
    case Node::Kind::SameValue:
        return sameValue(node, scene) ? 1 : 0;
    case Node::Kind::Unary:
        return node.unary(operand(0));
    case Node::Kind::Binary:
        return node.binary(operand(0), operand(1));
    case Node::Kind::And:
        return operand(0) != 0 && operand(1) != 0 ? 1 : 0;
    case Node::Kind::Or:
        return operand(0) != 0 || operand(1) != 0 ? 1 : 0;
    case Node::Kind::Choice:
        return operand(0) != 0 ? operand(1) : operand(2);
    case Node::Kind::Literal:
    case Node::Kind::ValueText:
    case Node::Kind::Join:
        break;
    }
    return 0; // texts give no number; the parser sees to it
}

StringView Expression::text(NodeNumber number_, const Scene& scene, String& scratch) const {
    const Node& node = nodes_[number_];
    switch (node.kind) {
    case Node::Kind::Literal:
        return node.literal;
    case Node::Kind::ValueText:
        return scene.definitions.value(node.slot, scene.moment).text;
    case Node::Kind::Choice:
        return text(node.operands[number(node.operands[0], scene) != 0 ? 1 : 2], scene, scratch);
    default: {
        String behind;
        String joined(text(node.operands[0], scene, scratch));
        joined += text(node.operands[1], scene, behind);
        scratch = std::move(joined);
        return scratch;
    }
    }
}

bool Expression::sameText(const Node& node, const Scene& scene) const {
    String left;
    String right;
    return text(node.operands[0], scene, left) == text(node.operands[1], scene, right);
}

bool Expression::sameValue(const Node& node, const Scene& scene) const {
    const std::size_t left = nodes_[node.operands[0]].slot;
    const std::size_t right = nodes_[node.operands[1]].slot;
    const auto isNumber = [&](std::size_t slot) {
        return Number::parse(scene.definitions.value(slot, scene.moment).text, scene.definitions.locale())
            .isNumber();
    };
    if (isNumber(left) && isNumber(right))
        return scene.definitions.number(left, scene.moment).value ==
               scene.definitions.number(right, scene.moment).value;
    return scene.definitions.value(left, scene.moment).text == scene.definitions.value(right, scene.moment).text;
}

void Expression::append(const Scene& scene, String& out) const {
    String scratch;
    out += text(root_, scene, scratch);
}

} // namespace kvtdruck::druckwerk
