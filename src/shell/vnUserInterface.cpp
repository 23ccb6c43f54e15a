#include "vnUserInterface.h"

#include <utility>

#include "Host.h"
#include "zTrace.h"

void vnUserInterface::SetMainMenu(vnMenu menu) {
    fMainMenu = std::move(menu);
    MainMenuChanged();
}

void vnUserInterface::SetStatusMenu(vnMenu menu) {
    fStatusMenu = std::move(menu);
    StatusMenuChanged();
}

void vnUserInterface::OpenStatusMenu() {
    if (fMenuDelegate)
        fMenuDelegate->menuNeedsUpdate();
}

void vnUserInterface::ChooseFromStatusMenu(int index, int subindex) {
    if (fMenuDelegate)
        fMenuDelegate->StatusMenuAction(index, subindex);
}

void vnUserInterface::ValidateMainMenuItem(vnMenuItem& item) {
    if (fMenuDelegate)
        fMenuDelegate->validateMenuItem(item);
}

void vnUserInterface::ChooseFromMainMenu(vnMenuAction action) {
    if (fMenuDelegate)
        fMenuDelegate->MainMenuAction(action);
}

bool vnUserInterface::RunAlert(const vnAlert& alert) {
    zTrace::Default()->TraceNote("%s\n", alert.title.c_str());
    return false;
}

std::unique_ptr<vnRegionSelectorWindow> vnUserInterface::NewRegionSelectorWindow(vnRegionSelectorView&) {
    return std::make_unique<vnRegionSelectorWindow>();
}

void vnUserInterface::Terminate() {
    host::Host::Current().RunLoopPort().Stop();
}
