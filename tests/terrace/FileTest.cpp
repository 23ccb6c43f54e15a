#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "TestFolder.h"
#include "zDirectory.h"
#include "zFSPath.h"

TEST(Path, GoesUpAndDown) {
    zFSPath path("/usr/lib/");
    path.GoChild("/x.d/");
    EXPECT_STREQ(path.Path(), "/usr/lib/x.d");
    EXPECT_STREQ(path.GetLeaf(), "x.d");
    for (const char* above : {"/usr/lib", "/usr", "", ""}) {
        path.GoParent();
        EXPECT_STREQ(path.Path(), above);
    }
    const std::string longName = "/a name too long to lie in the object itself";
    path = longName.c_str();
    path.GoChild(path.GetLeaf());
    EXPECT_EQ(path.Path(), longName + longName);
}

TEST(Path, ExtensionBelongsToTheLastPart) {
    for (const auto& [path, extension] :
         {std::pair{"/a/b.tar.gz", "gz"}, {"/a.d/b", ""}, {"b", ""}, {"b.", ""}})
        EXPECT_STREQ(zFSPath(path).GetExtension(), extension);
    zFSPath path("/a/b.tar.gz");
    path.StripFileExtension();
    EXPECT_STREQ(path.Path(), "/a/b.tar");
}

TEST(Directory, WalksFilesAndFolders) {
    const TestFolder root;
    const std::string folder = root / "folder";
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(zDirectory::MakeSureExists(folder.c_str()), 0);
    EXPECT_EQ(zDirectory::MakeSureExists((folder + "/a/b").c_str()), -1) << "one level only";
    root.Write("file", "");

    const std::unique_ptr<zDirectory> directory(zDirectory::Factory());
    ASSERT_EQ(directory->Open(root.Path().c_str()), 0);
    zString name;
    std::set<std::string> files, folders;
    unsigned int flags = 0;
    while (directory->GetNextFile(name, &flags, false) == 0)
        (flags & zDirectory::kIsDirectory ? folders : files).insert(std::string(name));
    EXPECT_EQ(files, std::set<std::string>{"file"});
    EXPECT_EQ(folders, (std::set<std::string>{".", "..", "folder"}));
    EXPECT_EQ(directory->Delete(root.Path().c_str()), -1) << "not empty";
    EXPECT_EQ(directory->Delete(folder.c_str()), 0);
    EXPECT_FALSE(zDirectory::Exists(folder.c_str()));
}
