#include <gtest/gtest.h>

#include <unistd.h>

#include <memory>
#include <set>
#include <string>

#include "zDirectory.h"
#include "zFSPath.h"
#include "zFileStream.h"

TEST(Path, GoesUpAndDown) {
    zFSPath path("/usr/lib/");
    EXPECT_STREQ(path.Path(), "/usr/lib");
    path.GoChild("/x.d/");
    EXPECT_STREQ(path.Path(), "/usr/lib/x.d");
    EXPECT_STREQ(path.GetLeaf(), "x.d");
    for (const char* above : {"/usr/lib", "/usr", "", ""}) {
        path.GoParent();
        EXPECT_STREQ(path.Path(), above);
    }
    path = "/a name too long to lie in the object itself";
    path.GoChild(path.GetLeaf());
    EXPECT_STREQ(path.Path(),
                 "/a name too long to lie in the object itself/a name too long to lie in the object itself");
}

TEST(Path, ExtensionBelongsToTheLastPart) {
    const struct {
        const char *path, *extension, *stripped;
    } cases[] = {
        {"/a/b.tar.gz", "gz", "/a/b.tar"}, {"/a.d/b", "", "/a.d/b"}, {"b", "", "b"}, {"b.", "", "b"}};
    for (const auto& c : cases) {
        zFSPath path(c.path);
        EXPECT_STREQ(path.GetExtension(), c.extension);
        path.StripFileExtension();
        EXPECT_STREQ(path.Path(), c.stripped);
    }
    EXPECT_FALSE(zFSPath::HasExtension("a.XML", "xml"));
    EXPECT_FALSE(zFSPath::HasExtension(nullptr, "xml"));
    EXPECT_STREQ(zFSPath::GetExtension("a.xml", -1), "xml") << "a negative length means all";
}

TEST(Directory, WalksFilesAndFolders) {
    zString root;
    ASSERT_EQ(zFileStream::CreateTemporaryFile(
                  root, ("glasspane_test_" + std::to_string(getpid()) + "_%ld").c_str()),
              0);
    ASSERT_EQ(zDirectory::MakeSureExists(root), 0);
    ASSERT_EQ(zDirectory::MakeSureExists(root), 0);
    const std::string folder = std::string(root) + "/folder";
    const std::string file = std::string(root) + "/file";
    ASSERT_EQ(zDirectory::MakeSureExists(folder.c_str()), 0);
    EXPECT_EQ(zDirectory::MakeSureExists((folder + "/a/b").c_str()), -1) << "one level only";
    zFileStream(file.c_str(), zFileStream::kWriteFile).Open();

    const std::unique_ptr<zDirectory> directory(zDirectory::Factory());
    ASSERT_EQ(directory->Open(root), 0);
    zString name;
    std::set<std::string> files;
    std::set<std::string> folders;
    unsigned int flags = 0;
    while (directory->GetNextFile(name, &flags, false) == 0)
        (flags & zDirectory::kIsDirectory ? folders : files).insert(std::string(name));
    EXPECT_EQ(files, std::set<std::string>{"file"});
    EXPECT_EQ(folders, (std::set<std::string>{".", "..", "folder"}));

    EXPECT_EQ(directory->Delete(root), -1) << "not empty";
    zFileStream::RemoveFile(file.c_str());
    EXPECT_EQ(directory->Delete(folder.c_str()), 0);
    EXPECT_EQ(directory->Delete(root), 0);
    EXPECT_FALSE(zDirectory::Exists(root));
}
