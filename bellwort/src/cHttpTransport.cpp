#include "cHttpTransport.h"

#include <climits>
#include <curl/curl.h>
#include <string_view>
#include <utility>

#include "cHttpMessage.h"

namespace {

constexpr const char* kProtocols = "http,https";

struct CurlDeleter {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct CurlMultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using HeaderList = std::unique_ptr<curl_slist, CurlDeleter>;

void append(HeaderList& list, const std::string& line) {
    if (curl_slist* longer = curl_slist_append(list.get(), line.c_str())) {
        [[maybe_unused]] auto* same = list.release();
        list.reset(longer);
    }
}

HeaderList header_lines(const cHttpMessage& message, bool reuse) {
    cHttpMessage::Fields fields = message.fields;
    fields.insert(message.proof.begin(), message.proof.end());
    if (!reuse)
        fields.emplace("Connection", "close");
    HeaderList list;
    for (const auto& [name, value] : fields)
        append(list, value.empty() ? name + ";" : name + ": " + value);
    // The library would add a type for forms, and wait a second for leave to send a large body.
    if (!fields.count("Content-Type"))
        append(list, "Content-Type:");
    if (!fields.count("Expect"))
        append(list, "Expect:");
    return list;
}

} // namespace

/// The multi handle keeps the connections; it goes last.
struct cHttpTransport::Curl {
    std::unique_ptr<CURLM, CurlMultiDeleter> multi{curl_multi_init()};
    std::unique_ptr<CURL, CurlDeleter> easy{curl_easy_init()};
    HeaderList headers;
    char failure[CURL_ERROR_SIZE] = "";
};

cHttpTransport::cHttpTransport() {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (ready == CURLE_OK)
        fCurl = std::make_unique<Curl>();
}

cHttpTransport::~cHttpTransport() {
    Stop();
}

bool cHttpTransport::IsURL(const std::string& url) {
    const std::unique_ptr<CURLU, CurlDeleter> parsed(curl_url());
    return parsed && curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) == CURLUE_OK;
}

bool cHttpTransport::Start(const cHttpMessage& message, bool reuse, Receiver receiver) {
    Stop();
    if (!fCurl || !fCurl->multi || !fCurl->easy)
        return false;
    CURL* easy = fCurl->easy.get();
    curl_easy_reset(easy);
    fCurl->headers = header_lines(message, reuse);
    fCurl->failure[0] = 0;
    fReceiver = std::move(receiver);
    fHeaderBytes = 0;
    fHeaderHasEnded = false;

    curl_easy_setopt(easy, CURLOPT_URL, message.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, kProtocols);
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, kMaxRedirects);
    curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, reuse ? 0L : 1L);
    curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, reuse ? 0L : 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L); // Breaking off must not wait for the look-up of a name.
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(INT_MAX)); // The session has its own.
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L); // Signals are the program's affair.
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, fCurl->headers.get());
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, fCurl->failure);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, on_header);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, on_body);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    if (message.isPost || message.hasBody) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(message.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, message.body.data());
    }
    if (!message.isPost)
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, message.hasBody ? "GET" : nullptr);

    if (curl_multi_add_handle(fCurl->multi.get(), easy) != CURLM_OK)
        return false;
    fState = State::kRunning;
    return true;
}

cHttpTransport::State cHttpTransport::Advance(int milliseconds) {
    if (fState != State::kRunning)
        return fState;
    CURLM* multi = fCurl->multi.get();
    if (milliseconds > 0)
        curl_multi_poll(multi, nullptr, 0, milliseconds, nullptr);
    int running = 0;
    if (curl_multi_perform(multi, &running) != CURLM_OK) {
        Stop();
        return fState;
    }
    int queued = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi, &queued)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const State ended = outcome(message->data.result); // The message goes with its handle.
        Stop();
        fState = ended;
        break;
    }
    return fState;
}

cHttpTransport::State cHttpTransport::outcome(int code) const {
    // The library is content with a header that breaks off.
    if (code == CURLE_OK)
        return fHeaderHasEnded ? State::kEnded : State::kFailed;
    // The receiver's refusal shows as a write error, and so does that of a header without end.
    const bool receiverRefused = code == CURLE_WRITE_ERROR && fHeaderBytes <= kMaxHeaderBytes;
    return code == CURLE_RECV_ERROR || receiverRefused ? State::kReadFailed : State::kFailed;
}

void cHttpTransport::Stop() {
    if (fState != State::kRunning)
        return;
    curl_multi_remove_handle(fCurl->multi.get(), fCurl->easy.get());
    fState = State::kFailed;
}

/// Called for each line of every response on the way, those of redirects included, and of trailers.
size_t cHttpTransport::on_header(char* bytes, size_t, size_t size, void* self) {
    auto& transport = *static_cast<cHttpTransport*>(self);
    const std::string_view line(bytes, size);
    if (line.substr(0, 5) == "HTTP/")
        transport.fHeaderHasEnded = false;
    else if (line == "\r\n" || line == "\n")
        transport.fHeaderHasEnded = true;
    transport.fHeaderBytes += size;
    return transport.fHeaderBytes <= kMaxHeaderBytes ? size : 0;
}

size_t cHttpTransport::on_body(char* bytes, size_t, size_t size, void* self) {
    return static_cast<cHttpTransport*>(self)->fReceiver(bytes, size) ? size : 0;
}

int cHttpTransport::Status() const {
    long status = 0;
    if (fCurl)
        curl_easy_getinfo(fCurl->easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

std::string cHttpTransport::ContentType() const {
    const char* type = nullptr;
    if (fCurl)
        curl_easy_getinfo(fCurl->easy.get(), CURLINFO_CONTENT_TYPE, &type);
    return type ? type : "";
}

int64_t cHttpTransport::ContentLength() const {
    curl_off_t length = -1;
    if (fCurl)
        curl_easy_getinfo(fCurl->easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    return length;
}

int64_t cHttpTransport::BytesWritten() const {
    curl_off_t written = 0;
    if (fCurl)
        curl_easy_getinfo(fCurl->easy.get(), CURLINFO_SIZE_UPLOAD_T, &written);
    return written;
}

const char* cHttpTransport::Failure() const {
    return fCurl ? fCurl->failure : "";
}
