#include "DocumentTextCommands.h"

#include <base/Exception.h>
#include <base/Strings.h>
#include <base/TextCommand.h>
#include <base/TextCommandRegistry.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/TransactionManager.h>

#include <cctype>
#include <filesystem>
#include <memory>
#include <sstream>

namespace Kx::Console {

namespace {

using Run = std::wstring (*)(const TextCommandParameters&);

class DocumentTextCommand final : public TextCommand {
public:
    DocumentTextCommand(const wchar_t* name, const wchar_t* description, Run run)
        : TextCommand(L"Document", name, description), m_run(run)
    {
    }
    [[nodiscard]] std::wstring execute(const TextCommandParameters& parameters) const override
    {
        try {
            return m_run(parameters);
        } catch (const Exception& error) {
            return failure(error.userText());
        } catch (const std::exception& error) {
            return failure(ToIString(error.what()));
        }
    }

private:
    Run m_run;
};

const std::wstring s_noDocument = L"No document is open: open one first (doc open FILE)";

Document* active() { return DocumentRegistry::get().active(); }

std::wstring open(const TextCommandParameters& parameters)
{
    if (parameters.parameters() != 1)
        return TextCommand::failure(L"You need to provide the document file to open");
    Document& document = DocumentRegistry::get().open(std::filesystem::path(parameters[0]));
    DocumentRegistry::get().activate(document);
    return L"opened " + document.path().wstring();
}

std::wstring save(const TextCommandParameters& parameters)
{
    Document* document = active();
    if (document == nullptr)
        return TextCommand::failure(s_noDocument);
    if (parameters.parameters() > 1)
        return TextCommand::failure(L"You can give one file to save to, or none to save where it was opened from");
    const std::filesystem::path target = parameters.parameters() == 1 ? std::filesystem::path(parameters[0]) : document->path();
    if (target.empty())
        return TextCommand::failure(L"The document was never saved: give the file to save it to");
    // Saved again in the form it was read in; a new file in the binary form.
    EStreamMode mode = EStreamMode::eBinary;
    if (!document->path().empty() && std::filesystem::exists(document->path()))
        mode = DocumentFile::readManifest(document->path()).streamMode;
    DocumentFile::save(*document, target, mode);
    return L"saved " + target.wstring();
}

std::wstring close(const TextCommandParameters&)
{
    Document* document = active();
    if (document == nullptr)
        return TextCommand::failure(s_noDocument);
    const std::wstring path = document->path().wstring();
    DocumentRegistry::get().close(*document);
    return L"closed " + path;
}

template <bool (TransactionManager::*Act)(), bool (TransactionManager::*Can)() const noexcept>
std::wstring step(const TextCommandParameters&)
{
    Document* document = active();
    if (document == nullptr)
        return TextCommand::failure(s_noDocument);
    TransactionManager& history = document->transactions();
    if (!(history.*Can)() || !(history.*Act)())
        return TextCommand::failure(L"There is nothing to take back or to do again");
    return L"done";
}

std::wstring list(const TextCommandParameters&)
{
    std::wstring out;
    Document* current = active();
    for (Document* document : DocumentRegistry::get().documents())
        out += (document == current ? L"* " : L"  ") + document->path().wstring() + L"\n";
    return out.empty() ? L"no document is open" : out.substr(0, out.size() - 1);
}

} // namespace

void registerDocumentTextCommands()
{
    TextCommandRegistry& registry = TextCommandRegistry::instance();
    if (registry.find(L"Document.Open"))
        return;
    registry.add(std::make_unique<DocumentTextCommand>(L"Open", L"<File> Opens a document and makes it the active one", &open));
    registry.add(std::make_unique<DocumentTextCommand>(L"Save", L"[File] Saves the active document, where it was opened from or to the file", &save));
    registry.add(std::make_unique<DocumentTextCommand>(L"Close", L"Closes the active document without saving it", &close));
    registry.add(std::make_unique<DocumentTextCommand>(L"Undo", L"Takes back the last change of the active document",
        &step<&TransactionManager::undo, &TransactionManager::canUndo>));
    registry.add(std::make_unique<DocumentTextCommand>(L"Redo", L"Does again the last change taken back",
        &step<&TransactionManager::redo, &TransactionManager::canRedo>));
    registry.add(std::make_unique<DocumentTextCommand>(L"List", L"Lists the open documents, the active one marked *", &list));
}

void closeAllDocuments()
{
    for (Document* document : DocumentRegistry::get().documents())
        DocumentRegistry::get().close(*document);
}

std::string documentLineAsTextCommand(const std::string& line)
{
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word == "kx")
        words >> word;
    if (word != "doc")
        return line;
    std::string verb;
    if (!(words >> verb) || verb.empty())
        return line;
    verb[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(verb[0])));
    std::string rest;
    std::getline(words, rest);
    return "Document." + verb + rest;
}

} // namespace Kx::Console
