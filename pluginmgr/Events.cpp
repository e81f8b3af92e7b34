// Subscription and broadcast of events.
#include <algorithm>

#include "pluginmgr/AudioPluginMgr.h"
#include "portable/PosixSingleLock.h"

int CAudioPluginMgr::GetReceiverNumber(IEventReceiver* receiver) {
    const auto found = std::find(m_vReceivers.begin(), m_vReceivers.end(), receiver);
    return found == m_vReceivers.end() ? -1 : static_cast<int>(found - m_vReceivers.begin());
}

bool CAudioPluginMgr::SubscribeToEvents(IEventReceiver* receiver) {
    const CPosixSingleLock lock(&m_mtxReceivers, 1);
    if (GetReceiverNumber(receiver) == -1) m_vReceivers.push_back(receiver);
    return true;
}

bool CAudioPluginMgr::UnsubscribeToEvents(IEventReceiver* receiver) {
    const CPosixSingleLock lock(&m_mtxReceivers, 1);
    const int number = GetReceiverNumber(receiver);
    if (number == -1) return false;
    m_vReceivers.erase(m_vReceivers.begin() + number);
    return true;
}

bool CAudioPluginMgr::SendEvent(unsigned int event, IUnknown* parameter) {
    const CPosixSingleLock lock(&m_mtxReceivers, 1);
    // Receivers that subscribe from inside OnEvent are not part of this broadcast.
    const std::size_t count = m_vReceivers.size();
    for (std::size_t i = 0; i < count && i < m_vReceivers.size(); ++i) m_vReceivers[i]->OnEvent(event, parameter);
    return true;
}
