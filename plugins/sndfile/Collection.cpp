// The plug-in's primary component: the decoder and the encoder.
#include "plugins/sndfile/Collection.h"

#include "com/QueryTable.h"

int CCollection::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                        {IID_IComponentEnum, static_cast<IComponentEnum*>(this)}});
}

bool CCollection::GetComponent(int index, IAudioComponent** component) {
    if (index < 0 || index >= GetCount() || component == nullptr) return false;
    *component = index == 0 ? static_cast<IAudioComponent*>(&m_decoder) : &m_encoder;
    (*component)->AddRef();
    return true;
}
