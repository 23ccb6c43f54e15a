#include "cHttpSession.h"

#include "cHttpSession_cf.h"
#include "cLogger.h"
#include "zRecord.h"

cHttpSession* cHttpSession::Factory() {
    return new cHttpSession_cf;
}

cHttpSession::~cHttpSession() {
    if (fLogger)
        fLogger->Release();
}

void cHttpSession::SetLogger(cLogger* logger) {
    if (logger)
        logger->AddRef();
    if (fLogger)
        fLogger->Release();
    fLogger = logger;
}

void cHttpSession::SetBasicHTTPAuthentication(const char* user, const char* password) {
    fUsesBasic = user != nullptr;
    fBasicUser = user;
    fBasicPassword = password;
}

void cHttpSession::SetContentTypeHeader(zRecord& headers, const char* type) {
    headers.SetCString("Content-Type", type);
}
