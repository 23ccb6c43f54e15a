#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Browser.h"
#include "Client.h"
#include "Connection.h"
#include "SourceMenu.h"
#include "SourceText.h"
#include "zString.h"
#include "zXMLRPC.h"

namespace receiver {

namespace {

using nlohmann::ordered_json;

// ---- discover ----

struct Discovery {
    double seconds = 2;
    bool json = false;
};

int discover(const Client& client, const Discovery& options) {
    std::vector<Browser::Server> servers;
    std::string reason;
    const std::chrono::duration<double> time(options.seconds);
    if (!Browser::Find(std::chrono::duration_cast<std::chrono::milliseconds>(time), client.interruption,
                       servers, reason))
        return Client::Fail(reason);
    if (options.json) {
        ordered_json list = ordered_json::array();
        for (const auto& server : servers)
            list.push_back({{"name", server.name},
                            {"host", server.host},
                            {"port", server.port},
                            {"version", server.version}});
        return Client::Print(list);
    }
    for (const auto& server : servers)
        printf("%-30s %s:%d\n", Client::Plain(server.name).c_str(), Client::Plain(server.host).c_str(),
               server.port);
    if (servers.empty())
        return Client::Fail("nobody serves on this network; name the server if it is on another one");
    return Client::kSuccess;
}

// ---- info ----

struct Question {
    Address server;
    bool json = false;
};

struct ServerInfo {
    zString version;
    int width = 0;
    int height = 0;
};

bool ask(Connection& connection, ServerInfo& info, std::string& reason) {
    Reply reply;
    if (!connection.Call("CheckConnection", reply, reason))
        return false;
    if (zXMLRPC(reply.Element()).GetStringParam(0, info.version) != 0) {
        reason = connection.Server().Text() + " is no Glasspane server";
        return false;
    }
    if (!connection.Call("Snapshot_MaximumRect", reply, reason))
        return false;
    const zXMLRPC size(reply.Element());
    if (size.GetInt32Param(0, &info.width) == 0 && size.GetInt32Param(1, &info.height) == 0)
        return true;
    reason = connection.Server().Text() + " doesn't tell the size of its source";
    return false;
}

int info(const Client& client, const Question& options) {
    Connection connection(options.server, &client.interruption);
    ServerInfo info;
    std::string reason;
    if (!ask(connection, info, reason))
        return Client::Fail(reason);
    SourceMenu menu;
    const bool hasMenu = menu.Fetch(connection, reason);
    std::string source;
    for (const auto& item : menu.Items())
        if (item.isChecked)
            source = item.title;
    if (options.json)
        return Client::Print({{"server", options.server.Text()},
                              {"version", static_cast<const char*>(info.version)},
                              {"width", info.width},
                              {"height", info.height},
                              {"source", source},
                              {"has_menus", hasMenu}});
    printf("%s: protocol %s, %d x %d%s%s\n", options.server.Text().c_str(),
           Client::Plain(static_cast<const char*>(info.version)).c_str(), info.width, info.height,
           source.empty() ? "" : ", ", Client::Plain(source).c_str());
    return Client::kSuccess;
}

// ---- menus, source ----

void print(const SourceMenu::Item& item) {
    const char* mark = item.isChecked ? "*" : " ";
    if (item.kind == SourceMenu::Item::Kind::kWindow)
        printf("%s window   %s (%s)\n", mark, Client::Plain(item.title).c_str(),
               Client::Plain(item.application).c_str());
    else
        printf("%s %s %d %s\n", mark, KindText(item.kind), item.screen, Client::Plain(item.title).c_str());
}

int menus(const Client& client, const Question& options) {
    Connection connection(options.server, &client.interruption);
    SourceMenu menu;
    std::string reason;
    if (!menu.Fetch(connection, reason))
        return Client::Fail(reason);
    if (options.json) {
        ordered_json list = ordered_json::array();
        for (const auto& item : menu.Items())
            list.push_back(SourceJSON(item));
        return Client::Print(list);
    }
    for (const auto& item : menu.Items())
        print(item);
    return Client::kSuccess;
}

struct Choice {
    Address server;
    int screen = -1;
    bool region = false;
    std::string window;
};

const SourceMenu::Item* find(const SourceMenu& menu, const Choice& choice, std::string& reason) {
    if (!choice.window.empty())
        return menu.FindWindow(choice.window, reason);
    const SourceMenu::Item* item = menu.FindScreen(choice.screen, choice.region);
    if (!item)
        reason = "there is no screen " + std::to_string(choice.screen) + "; the command menus lists them";
    return item;
}

int choose_source(const Client& client, const Choice& choice) {
    Connection connection(choice.server, &client.interruption);
    SourceMenu menu;
    std::string reason;
    if (!menu.Fetch(connection, reason))
        return Client::Fail(reason);
    const SourceMenu::Item* item = find(menu, choice, reason);
    if (!item || !menu.Choose(connection, *item, reason))
        return Client::Fail(reason);
    printf("%s shows %s\n", choice.server.Text().c_str(), Client::Plain(item->title).c_str());
    return Client::kSuccess;
}

/// A command that only asks a server.
void add_question(CLI::App& program, Client& client, const char* name, const char* description,
                  int (*run)(const Client&, const Question&)) {
    CLI::App* command = program.add_subcommand(name, description);
    const auto options = std::make_shared<Question>();
    Client::AddServer(*command, options->server);
    command->add_flag("--json", options->json, "Print JSON");
    command->callback([&client, options, run] {
        client.command = [&client, options, run] { return run(client, *options); };
    });
}

void add_discover(CLI::App& program, Client& client) {
    CLI::App* command = program.add_subcommand("discover", "Lists the servers on this network");
    const auto options = std::make_shared<Discovery>();
    command->add_option("--time", options->seconds, "Seconds to listen")
        ->check(Client::Within(0.1, 600))
        ->option_text("SECONDS (2)");
    command->add_flag("--json", options->json, "Print JSON; an empty list is no failure then");
    command->callback(
        [&client, options] { client.command = [&client, options] { return discover(client, *options); }; });
}

void add_source(CLI::App& program, Client& client) {
    CLI::App* command = program.add_subcommand("source", "Makes the server show another source");
    const auto options = std::make_shared<Choice>();
    Client::AddServer(*command, options->server);
    CLI::Option* screen = command->add_option("--screen", options->screen, "A screen by its number, from 0")
                              ->check(Client::Within(0, 1000))
                              ->option_text("N");
    command->add_flag("--region", options->region, "A region of the screen, which the server's user draws")
        ->needs(screen);
    CLI::Option* window =
        command->add_option("--window", options->window, "A window by its title or a part of it")
            ->excludes(screen)
            ->option_text("TITLE");
    command->callback([&client, options, screen, window] {
        if (screen->empty() && options->window.empty())
            throw CLI::RequiredError("--screen or --window");
        client.command = [&client, options] { return choose_source(client, *options); };
    });
}

} // namespace

void AddLookCommands(CLI::App& program, Client& client) {
    add_discover(program, client);
    add_question(program, client, "info", "Tells what a server shows", info);
    add_question(program, client, "menus", "Lists what a server could show; * marks what it does show",
                 menus);
    add_source(program, client);
}

} // namespace receiver
