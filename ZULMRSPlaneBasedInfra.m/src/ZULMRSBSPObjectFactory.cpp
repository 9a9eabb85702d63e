#include "ZULMRSBSPObjectFactory.h"

#include <memory>
#include <new>

#include "ZULMRSBSPObjectFactoryImpl.h"

ZULMRSBSPObjectFactory::ZULMRSBSPObjectFactory() = default;

ZULMRSBSPObjectFactory::ZULMRSBSPObjectFactory(const ZULMRSBSPObjectFactory&) = default;

ZULMRSBSPObjectFactory& ZULMRSBSPObjectFactory::operator=(const ZULMRSBSPObjectFactory&) = default;

ZULMRSBSPObjectFactory::~ZULMRSBSPObjectFactory() = default;

ZULMRSBSPObjectFactory* ZULMRSCreateObjectFactory(bool geometricIdentity)
{
    // The braces make the point factory first, and only once there is room for the object itself.
    std::unique_ptr<ZULMRSBSPObjectFactoryImpl> factory(new (std::nothrow) ZULMRSBSPObjectFactoryImpl{
        std::unique_ptr<ZULMRSBSPPointFactory>(ZULMRSCreatePointFactory()),
        std::unique_ptr<ZULMRSBSPPlaneFactory>(ZULMRSCreatePlaneFactory(geometricIdentity))});
    return factory != nullptr && factory->IsComplete() ? factory.release() : nullptr;
}
