#pragma once

#include <map>
#include <string>

#include "zString.h"

class zRecord;

/// A request as it is sent: URL, method, header fields and body. The fields that prove who asks are made once
/// and stay while the message is kept for another request; those of a request and its body come anew.
struct cHttpMessage {
    struct IgnoreCase {
        bool operator()(const std::string& a, const std::string& b) const {
            return zString::strcasecmp(a.c_str(), b.c_str()) < 0;
        }
    };
    using Fields = std::map<std::string, std::string, IgnoreCase>;

    std::string url;
    bool isPost = false;
    Fields proof;  ///< WSSE.
    Fields fields; ///< Of this request; they stand above the proof.
    std::string body;
    bool hasBody = false;

    /// Fills in the three header fields of WSSE's user-name token: SHA-1 over a number used once, the time in
    /// UTC and the password.
    void AddWSSEProof(const char* user, const char* password);
    void SetBasicProof(const char* user, const char* password);
    /// A field for each variable of the record. What could forge further fields is left out, and so are
    /// fields that tell of the body's length, which is the transport's affair.
    void SetFields(const zRecord& headers);
};
