#include "frontend/reports/html_text.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Html, TextIsShownAndNeverRun) {
    EXPECT_EQ(escaped("<script>alert('x')</script> & \"q\""),
              "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt; &amp; &quot;q&quot;");
    EXPECT_EQ(scriptSafe("{\"a\":\"</script>\"}"), "{\"a\":\"\\u003c/script\\u003e\"}");
}

}  // namespace
}  // namespace quorva::frontend
