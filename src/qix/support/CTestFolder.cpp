#include <qix/CTestFolder.h>
#include <zel/CInvalidArgError.h>
#include <zel/filesystem.h>

#include <exception>

namespace qix
{

CTestFolder::CTestFolder(zel::String const& name)
{
    if (name.empty())
    {
        throw zel::CInvalidArgError("CTestFolder constructor", "the name must not be empty",
                                    zel::CProps());
    }
    constexpr int everythingAllowed = 0777;
    m_path = zel::CPath(name).toNormalized(true, zel::CPath());
    zel::unlinkFolder(m_path);
    zel::ensureFolderExists(m_path, everythingAllowed);
}

CTestFolder::~CTestFolder()
{
    try
    {
        zel::unlinkFolder(m_path);
    }
    catch (std::exception const&)
    {
        // The outcome of a test does not depend on whether its folder could be removed.
    }
}

} // namespace qix
