#pragma once

#include <string>
#include <vector>

#include "TestClient.h"

/// A reply as a client takes it apart: its element, and the sections behind it.
struct Response {
    struct Section {
        std::string head; ///< With the blank line.
        std::string data;
    };

    Response() = default;
    explicit Response(const TestClient::Reply& reply) : xml(reply.body) {
        if (reply.head.find("multipart/related") == std::string::npos)
            return;
        const std::string delimiter = "\r\n--MimeBoundary_8923gr836bidfb3i";
        const std::string body = "\r\n" + reply.body;
        size_t start = delimiter.size() + 2;
        for (size_t data; (data = body.find("\r\n\r\n", start)) != std::string::npos;) {
            data += 4;
            const size_t end = body.find(delimiter, data);
            sections.push_back({body.substr(start, data - start), body.substr(data, end - data)});
            if (end == std::string::npos)
                break;
            start = end + delimiter.size() + 2;
        }
        xml = sections.empty() ? "" : sections[0].data;
        if (!sections.empty())
            sections.erase(sections.begin());
    }

    /// An attribute of the element; empty without it.
    std::string Attribute(const std::string& name) const {
        const size_t start = xml.find(" " + name + "=\"");
        if (start == std::string::npos)
            return "";
        const size_t value = start + name.size() + 3;
        return xml.substr(value, xml.find('"', value) - value);
    }

    std::string xml;
    std::vector<Section> sections;
};
