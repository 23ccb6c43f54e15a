#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "Reply.h"
#include "StreamReply.h"

/// A reply that a server gave, as it came: its content type and its body.
struct RealReply {
    std::string type;
    std::string body;

    explicit RealReply(const std::string& name) {
        std::ifstream file(std::string(REPLIES "/") + name, std::ios::binary);
        std::getline(file, type);
        body.assign(std::istreambuf_iterator<char>(file), {});
    }

    RealReply& Replace(const std::string& from, const std::string& to) {
        if (const size_t place = body.find(from); place != body.npos)
            body.replace(place, from.size(), to);
        else
            body.clear(); // So that the test fails.
        return *this;
    }

    bool Parse(receiver::Reply& reply, std::string& reason) const {
        reply.Body().SetAndCopyData(body.data(), static_cast<unsigned int>(body.size()), 0);
        return reply.Parse(type, reason);
    }

    /// As it travels.
    std::string Bytes() const {
        return "HTTP/1.1 200 OK\r\nContent-Type: " + type +
               "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
};
