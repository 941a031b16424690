#include "OnlineCommands.h"

#include "MaterialCommands.h"
#include "OnlineLibraryServer.h"
#include "Table.h"

#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Online/DownloadedMaterialLibrary.h>
#include <Types/Online/ExchangeMaterialHelper.h>
#include <Types/Online/OnlineDownloads.h>
#include <Types/Online/OnlineLibraryPublisher.h>

#include <base/Exception.h>
#include <base/Strings.h>
#include <base/UIThreadQueue.h>

#include <CLI/CLI.hpp>

#include <atomic>
#include <csignal>
#include <iostream>
#include <mutex>
#include <ostream>

#include <unistd.h>

namespace Kx::Console {

namespace {

using Types::CMExchangeMaterialHelper;

struct OnlineArguments {
    CLI::App* publish = nullptr;
    CLI::App* serve = nullptr;
    CLI::App* material = nullptr;
    CLI::App* texture = nullptr;
    CLI::App* thumbnail = nullptr;
    CLI::App* categories = nullptr;
    CLI::App* content = nullptr;
    std::vector<std::string> libraryFiles;
    std::string out;
    std::string folder;
    std::string host = "127.0.0.1";
    int port = 8080;
    std::string id;
    std::string library;
    bool offline = false;
    unsigned timeout = 600;
};

OnlineArguments& arguments()
{
    static OnlineArguments held;
    return held;
}

std::atomic<bool> s_interrupted{false};

// Shows how a transfer goes: a bar that redraws itself on a terminal, a line at each quarter
// otherwise (a log or a pipe keeps a few lines, not hundreds).
class Progress {
public:
    Progress(std::ostream& out, std::string verb, std::string unit)
        : m_out(out), m_terminal(isatty(STDERR_FILENO) != 0), m_verb(std::move(verb)), m_unit(std::move(unit))
    {
    }

    void operator()(std::uint64_t done, std::uint64_t total)
    {
        if (total == 0)
            return;
        const int percent = static_cast<int>(done * 100 / total);
        std::lock_guard lock(m_mutex);
        if (m_terminal) {
            const int filled = percent / 4;
            std::cerr << "\r[" << std::string(filled, '#') << std::string(25 - filled, ' ') << "] " << percent << "% ("
                      << done << " of " << total << " " << m_unit << ")" << std::flush;
            m_drawn = true;
        } else if (percent / 25 > m_lastQuarter) {
            m_lastQuarter = percent / 25;
            m_out << m_verb << " " << percent << "% (" << done << " of " << total << " " << m_unit << ")\n" << std::flush;
        }
    }
    void finish()
    {
        if (m_drawn)
            std::cerr << '\n';
    }

private:
    std::ostream& m_out;
    bool m_terminal;
    bool m_drawn = false;
    std::string m_verb;
    std::string m_unit;
    int m_lastQuarter = -1;
    std::mutex m_mutex;
};

void publish(std::ostream& out, const OnlineArguments& held)
{
    std::vector<std::filesystem::path> files(held.libraryFiles.begin(), held.libraryFiles.end());
    Progress progress(out, "published", "materials");
    const Types::PublishedOnlineLibrary published = Types::PublishOnlineLibrary(files, held.out,
        [&](std::size_t done, std::size_t total) { progress(done, total); });
    progress.finish();
    out << "published " << published.index.materials.size() << " materials in " << published.index.categories.size()
        << " categories (" << published.bytes << " bytes) to " << held.out << "; serve it with: kx library serve "
        << held.out << '\n';
}

void serve(std::ostream& out, const OnlineArguments& held)
{
    std::signal(SIGINT, [](int) { s_interrupted = true; });
    std::signal(SIGTERM, [](int) { s_interrupted = true; });
    serveOnlineLibrary(held.folder, held.host, held.port,
        [&](const std::string& url) {
            out << "serving " << held.folder << " at " << url << " (KX_ONLINE_LIBRARY=" << url << "); Ctrl-C stops\n"
                << std::flush;
        },
        [] { return s_interrupted.load(); });
    out << "stopped\n";
}

std::string narrow(const std::wstring& text)
{
    return ToUTF8(text);
}

// Runs one request through the application's download manager and helper and waits for its end.
void download(std::ostream& out, const OnlineArguments& held, const std::string& what)
{
    (void)loadedManager();
    if (!held.library.empty())
        setenv("KX_ONLINE_LIBRARY", held.library.c_str(), 1);
    if (held.offline)
        setenv("KX_ONLINE_OFFLINE", "1", 1);
    CMExchangeMaterialHelper& helper = Types::InstallExchangeMaterialHelper();
    if (helper.settings().baseUrl.empty() && !helper.settings().offline)
        throw Exception(L"No online material library is set", "give --library URL or set KX_ONLINE_LIBRARY");
    Progress progress(out, "downloaded", "bytes");
    helper.setProgressListener([&](const std::wstring&, std::uint64_t done, std::uint64_t total) { progress(done, total); });
    ExchangeMaterialManager& manager = ExchangeMaterialManager::GetInstance();
    const std::wstring id = ToIString(held.id);
    using Event = ExchangeMaterialEvent;
    std::function<bool(const Event&)> ends;
    if (what == "material") {
        ends = [&](const Event& e) {
            return e.GetMaterialID() == id && (e.GetDownloadType() == Event::eDownloadMaterial || e.GetDownloadType() == Event::eCancelDownload);
        };
        manager.DownloadMaterial(L"", L"", id.c_str());
    } else if (what == "texture") {
        ends = [&](const Event& e) { return e.GetMaterialID() == id || e.GetDownloadType() == Event::eTexturesResolved; };
        manager.DownloadMaterialTexture(L"", L"", id.c_str());
    } else if (what == "thumbnail") {
        ends = [&](const Event& e) { return e.GetDownloadType() == Event::eDownloadThumbnail && e.GetMaterialID() == id; };
        manager.DownloadMaterialThumbnail(L"", L"", id.c_str());
    } else if (what == "categories") {
        ends = [](const Event& e) { return e.GetDownloadType() == Event::eQueryCategoryList; };
        manager.QueryLibraryCategory(L"", L"", id);
    } else {
        ends = [](const Event& e) { return e.GetDownloadType() == Event::eQuerymaterialInfoList; };
        manager.QueryLibraryContent(L"", L"", id);
    }
    // A texture's own completion carries no material id of its own: wait until nothing is in flight.
    std::optional<Event> ended;
    if (what == "texture") {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(held.timeout);
        while (!manager.isAllDownloadCompleted() && std::chrono::steady_clock::now() < until)
            (void)UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(50));
        const auto [material, texture] = helper.index() ? helper.index()->findTexture(held.id)
                                                        : std::pair<const Types::OnlineMaterial*, const Types::OnlineTexture*>{};
        std::error_code ignored;
        if (texture == nullptr || !std::filesystem::exists(helper.texturePath(held.id), ignored))
            throw Exception(L"The texture was not downloaded", held.id + " (see the log for why)");
        progress.finish();
        out << "installed " << held.id << " at " << helper.texturePath(held.id).string() << '\n';
        Types::ShutdownExchangeMaterialHelper();
        return;
    }
    ended = Types::WaitForExchangeMaterialEvent(ends, std::chrono::seconds(held.timeout));
    progress.finish();
    if (!ended)
        throw Exception(L"The online library did not answer in time", std::to_string(held.timeout) + " s");
    if (!ended->GetIsDownloadSuccess())
        throw Exception(L"The download failed", narrow(ended->GetDownloadMessage()));
    if (what == "material") {
        out << "installed " << held.id << " into " << helper.downloadedLibrary().file().string() << '\n';
    } else if (what == "thumbnail") {
        const auto index = helper.index();
        const Types::OnlineMaterial* material = index ? index->findMaterial(held.id) : nullptr;
        out << "installed the thumbnail of " << held.id << (material ? " at " + helper.thumbnailPath(*material).string() : "") << '\n';
    } else if (what == "categories") {
        Table table({{"category"}, {"name"}, {"materials", Table::EAlign::eRight}});
        for (const auto& category : ended->GetCategoryList())
            table.addRow({narrow(category.categoryId), narrow(category.name), std::to_string(category.materialCount)});
        table.print(out);
    } else {
        Table table({{"UUID"}, {"name"}, {"type"}, {"category"}, {"bytes", Table::EAlign::eRight}, {"installed"}});
        for (const auto& material : ended->GetMaterialInfoList()) {
            table.addRow({narrow(material.materialId), narrow(material.name), narrow(material.assetType), narrow(material.category),
                std::to_string(material.sizeInBytes), material.downloaded ? "yes" : "no"});
        }
        table.print(out);
    }
    Types::ShutdownExchangeMaterialHelper();
}

} // namespace

void addOnlineCommands(CLI::App& app)
{
    OnlineArguments& held = arguments();
    CLI::App* library = app.get_subcommand("library");
    held.publish = library->add_subcommand("publish", "publish library files as an online library any web server can host");
    held.publish->add_option("libraries", held.libraryFiles, "the .tvrnlib files")->required();
    held.publish->add_option("--out", held.out, "the folder to write the online library to")->required()->type_name("DIR");
    held.publish->footer("Example: kx library publish Mine.tvrnlib Other.tvrnlib --out site/materials");
    held.serve = library->add_subcommand("serve", "serve an online library folder over HTTP until Ctrl-C");
    held.serve->add_option("folder", held.folder, "the folder kx library publish wrote")->required();
    held.serve->add_option("--port", held.port, "the port (0: any free one)")->capture_default_str();
    held.serve->add_option("--bind", held.host, "the address to listen on (0.0.0.0: every network)")->capture_default_str();
    held.serve->footer("Example: kx library serve site/materials --port 8080");

    CLI::App* download = app.add_subcommand("download", "materials, textures and thumbnails from the online library");
    const auto common = [&](CLI::App* command) {
        command->add_option("--library", held.library, "the online library's base URL (default: $KX_ONLINE_LIBRARY)")->type_name("URL");
        command->add_flag("--offline", held.offline, "ask nothing of the network: answer from what is installed");
        command->add_option("--timeout", held.timeout, "seconds to wait for the end (default 600)");
    };
    const auto withId = [&](const char* name, const char* description, const char* idText, const char* example) {
        CLI::App* command = download->add_subcommand(name, description);
        command->add_option("id", held.id, idText)->required();
        command->footer(std::string("Example: ") + example);
        common(command);
        return command;
    };
    held.material = withId("material", "download a material and install it into the Downloaded library", "the material's UUID",
        "kx download material 0E4C9B3A-1F2D-4C5B-8A7E-6D9F0B1C2A3E --library http://127.0.0.1:8080/");
    held.texture = withId("texture", "download a texture image of a material", "the texture's id: <material UUID>/<file name>",
        "kx download texture 0E4C9B3A-1F2D-4C5B-8A7E-6D9F0B1C2A3E/brick.png");
    held.thumbnail = withId("thumbnail", "download the thumbnail of a material", "the material's UUID",
        "kx download thumbnail 0E4C9B3A-1F2D-4C5B-8A7E-6D9F0B1C2A3E");
    held.categories = download->add_subcommand("categories", "list the online library's categories");
    held.categories->add_option("parent", held.id, "list the categories below this one (default: the top level)");
    held.categories->footer("Example: kx download categories --library http://127.0.0.1:8080/");
    common(held.categories);
    held.content = download->add_subcommand("content", "list the online library's materials");
    held.content->add_option("category", held.id, "only this category and those below it (default: all)");
    held.content->footer("Example: kx download content Metal");
    common(held.content);
    download->require_subcommand(1);
    download->footer("Example: kx download content --library http://127.0.0.1:8080/");
}

bool runOnlineCommand(std::ostream& out)
{
    OnlineArguments& held = arguments();
    const auto chosen = [](const CLI::App* command) { return command != nullptr && command->parsed(); };
    if (chosen(held.publish))
        publish(out, held);
    else if (chosen(held.serve))
        serve(out, held);
    else if (chosen(held.material))
        download(out, held, "material");
    else if (chosen(held.texture))
        download(out, held, "texture");
    else if (chosen(held.thumbnail))
        download(out, held, "thumbnail");
    else if (chosen(held.categories))
        download(out, held, "categories");
    else if (chosen(held.content))
        download(out, held, "content");
    else
        return false;
    return true;
}

} // namespace Kx::Console
