#pragma once

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// A source file whose bytes come from memory, processed on construction; with a root once Build was called.
class Source {
public:
    explicit Source(std::string_view text) : file(new TAPSourceFile(BufferOf(text))) {
        result = file->Process(macros);
    }
    ~Source() {
        if (root != nullptr) root->Release();
        file->Release();
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    std::string_view Stream() const {
        return {file->GetStream() != nullptr ? file->GetStream() : "",
                static_cast<std::size_t>(file->GetSize())};
    }

    TAPSyntaxe* Build() {
        TAPSyntaxe::ErrMsg = "";
        root = new TAPSyntaxe(STYPE_File, file, 0, file->GetSize(), -1);
        buildResult = root->Build();
        return root;
    }

    TAIndex macros;
    TAPSourceFile* file;
    TAPSyntaxe* root = nullptr;
    int result = 0;
    int buildResult = 0;

private:
    static TAFileBuffer* BufferOf(std::string_view text) {
        auto* buffer = new TAFileBuffer("memory.cpp", 0);
        buffer->loaded = 1;
        buffer->size = static_cast<unsigned>(text.size());
        buffer->buffer = static_cast<char*>(std::malloc(text.size() + 1));
        std::memcpy(buffer->buffer, text.data(), text.size());
        buffer->buffer[text.size()] = 0;
        return buffer;
    }
};

// A tree in one line: the name of each node with its children behind it, the text of leaves, and `?` with the
// text for an expression without kind.
inline std::string OneLine(TAPSyntaxe* node) {
    static constexpr const char* names[] = {"", "file", "bloc",    "inst", "",
                                            "", "args", "shallow", "decl", "null"};
    if (node->GetType() == STYPE_Identifiant) return node->GetContent();
    std::string line = names[node->GetType()];
    if (node->GetType() == STYPE_Expression) {
        const char* kind = static_cast<TAPExpression*>(node)->kind;
        line.assign(kind, strnlen(kind, 3));
        if (line.empty()) line = std::string("?") + node->GetContent();
    } else if (node->GetType() == STYPE_Instruction || node->GetType() == STYPE_Declaration) {
        const int precise = static_cast<TAPInstruction*>(node)->GetPreciseType();
        if (precise != 0) line += std::to_string(precise);
    }
    for (int i = 1; i <= node->ChildCount(); ++i) line += (i == 1 ? "(" : " ") + OneLine(node->Child(i));
    return node->ChildCount() > 0 ? line + ")" : line;
}
