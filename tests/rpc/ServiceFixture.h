#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "SoundHost.h"
#include "cBuffer.h"
#include "cMultipartRecord.h"
#include "cRPCExecutor.h"
#include "vnConfigurableSnapshot.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnSnapshot_cg.h"
#include "zBuffer.h"
#include "zCritical.h"
#include "zRecord.h"
#include "zXML.h"
#include "zXMLRPC.h"

/// What services answer from: a fake machine, and a front with a device for each of its displays.
class ServiceFixture : public testing::Test {
  protected:
    explicit ServiceFixture(std::vector<host::Rect> displays) {
        machine.displays = std::move(displays);
        for (size_t id = 1; id <= machine.displays.size(); ++id)
            front.AddDevice("display", new vnSnapshot_cg(static_cast<int>(id)));
        front.SetCurrentDeviceByIndex(0);
        mouse = new vnRPC_SnapshotMouse(lock.get(), &front, kInstance); // Opens the devices.
    }
    ~ServiceFixture() override {
        attachments.RemoveAndReleaseAll();
        mouse->Release();
    }

    int Execute(cRPCExecutor& service, const char* method, const zRecord& parameters) {
        zRecord request;
        zXMLRPC(request).SetMethod(method);
        zXMLRPC(request).AppendStructParam(parameters);
        reply.MakeEmpty();
        multipart.MakeEmpty();
        attachments.RemoveAndReleaseAll();
        cMultipartRecord(multipart).AddSection(0, "text/xml; charset=UTF-8"); // The reply's, by the server.
        return service.RPC_ExecuteMethod(method, request, reply, multipart, attachments);
    }
    static void SetCrop(zRecord& parameters, const zRect& crop) {
        parameters.SetInt32("crop_left", crop.left);
        parameters.SetInt32("crop_top", crop.top);
        parameters.SetInt32("crop_right", crop.right);
        parameters.SetInt32("crop_bottom", crop.bottom);
    }
    std::string ReplyXML() {
        zBuffer text;
        zXML::RecordToBuffer(&text, reply, 255, false, false);
        return {text.Data(), text.Size()};
    }

    static constexpr uint32_t kInstance = 4000000000U;

    SoundHost machine;
    host::HostScope scope{machine};
    std::unique_ptr<zCritical> lock{zCritical::Factory(1)};
    vnConfigurableSnapshot front;
    vnRPC_SnapshotMouse* mouse = nullptr;
    zRecord reply;
    zRecord multipart;
    zList<cBuffer*> attachments;
};
