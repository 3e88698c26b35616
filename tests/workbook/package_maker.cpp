#include "package_maker.h"

#include <zip.h>

namespace quorva::workbook {

std::string zipped(const Parts& parts) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = zip_open_from_source(target, ZIP_TRUNCATE, &error);
    zip_source_keep(target);
    for (const auto& [name, content] : parts) {
        zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
        if (zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8) < 0) {
            zip_source_free(source);
        }
    }
    if (zip_get_num_entries(archive, 0) == 0 || zip_close(archive) < 0) {  // no archive is written without a part
        zip_discard(archive);
        zip_source_free(target);
        return "";
    }
    zip_source_open(target);
    zip_source_seek(target, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(zip_source_tell(target)), '\0');
    zip_source_seek(target, 0, SEEK_SET);
    zip_source_read(target, bytes.data(), bytes.size());
    zip_source_close(target);
    zip_source_free(target);
    return bytes;
}

}  // namespace quorva::workbook
