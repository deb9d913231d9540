#pragma once

#include <algorithm>
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
#include <ostraka/syntax/TAPSyntaxeWalk.h>

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
    // No room to look ahead, so that a sanitizer sees every byte that is read behind the text.
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

// The name of a node, the text of a leaf, or `?` with the text for an expression without kind.
inline std::string ShortName(TAPSyntaxe* node) {
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
    return line;
}

// A tree in one line: each node with its children behind it in parentheses.
inline std::string OneLine(TAPSyntaxe* top) {
    std::string line;
    int level = 0; // of the last node
    for (TAPSyntaxeWalk walk(*top); walk.Node() != nullptr; walk.Next()) {
        line.append(static_cast<std::size_t>(std::max(level - walk.Level(), 0)), ')');
        if (walk.Level() > 0) line += walk.Level() > level ? '(' : ' ';
        line += ShortName(walk.Node());
        level = walk.Level();
    }
    return line.append(static_cast<std::size_t>(level), ')');
}
